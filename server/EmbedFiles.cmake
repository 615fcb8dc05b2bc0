# Writes FILES (names in DIRECTORY) as byte arrays into the C++ source OUTPUT, which defines VARIABLE.
set(arrays "")
set(table "")
set(index 0)
foreach(name IN LISTS FILES)
    file(READ ${DIRECTORY}/${name} bytes HEX)
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
    string(APPEND arrays "constexpr char file${index}[] = {\n${bytes}};\n")
    string(APPEND table "    {\"${name}\", {file${index}, sizeof file${index}}},\n")
    math(EXPR index "${index} + 1")
endforeach()
file(WRITE ${OUTPUT} "#include \"server/api/PageFiles.h\"\n\nnamespace hmi {\n\nnamespace {\n\n${arrays}
constexpr PageFile files[] = {\n${table}};\n\n}  // namespace\n
const std::span<const PageFile> ${VARIABLE}(files);\n\n}  // namespace hmi\n")
