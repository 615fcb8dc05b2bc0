# Writes the table of CaseFolding.cpp from SOURCE, Unicode's CaseFolding.txt, into OUTPUT: the common
# and the full foldings, in order of the letter that is folded.
file(READ ${SOURCE} text)
string(REPLACE ";" "," text "${text}")  # which would part the items of a list
string(REGEX MATCHALL "\n[0-9A-F]+, [CF], [0-9A-F ]+," lines "${text}")
set(table "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "\n([0-9A-F]+), ., ([0-9A-F ]+)," "{0x\\1,{0x\\2}}" entry "${line}")
    string(REPLACE " " ", 0x" entry "${entry}")
    string(APPEND table "    ${entry},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"server/unicode/CaseFolding.h\"\n\nnamespace hmi {\n\n\
namespace {\n\nconstexpr Folding table[] = {\n${table}};\n\n}  // namespace\n\n\
const std::span<const Folding> foldings(table);\n\n}  // namespace hmi\n")
