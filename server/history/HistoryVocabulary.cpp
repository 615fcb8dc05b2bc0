#include "server/history/HistoryVocabulary.h"

#include "server/history/HistoryWords.h"

namespace hmi {

namespace {

constexpr std::size_t mostWords = 500;
constexpr std::size_t mostLooks = 5000;

}  // namespace

HistoryVocabulary::HistoryVocabulary(Database& database) : database(database) {
    database.execute(
        "CREATE VIRTUAL TABLE IF NOT EXISTS temp.known USING fts5vocab(main, words, instance);"
        "CREATE VIRTUAL TABLE IF NOT EXISTS temp.typed"
        " USING fts5(text, content='', tokenize='unicode61 remove_diacritics 2');"
        "CREATE VIRTUAL TABLE IF NOT EXISTS temp.typed_word USING fts5vocab(temp, typed, instance)");
}

std::optional<std::vector<std::string>> HistoryVocabulary::startingWith(
    std::string_view beginning) {
    std::vector<std::string> found;
    std::vector<std::string> typed = wordsOf(beginning);
    if (typed.empty())
        return found;
    const std::string start = std::move(typed.back());
    typed.pop_back();
    std::string before;
    for (const std::string& word : typed)
        before += word + " ";
    Statement next(database, "SELECT term FROM temp.known WHERE term>=?1 LIMIT 1");
    std::string from = start;
    for (std::size_t looks = 0; next.bind(std::string_view(from)).step(); ++looks) {
        const std::string word(next.text(0));
        if (!word.starts_with(start))
            break;
        if (found.size() == mostWords || looks == mostLooks)
            return std::nullopt;
        if (!isNameMark(word))
            found.push_back(before + word);
        from = word + '\1';  // behind it and before any that is longer
    }
    return found;
}

std::vector<std::string> HistoryVocabulary::wordsOf(std::string_view text) {
    Statement(database, "INSERT INTO temp.typed(rowid, text) VALUES(1, ?1)").bind(text).run();
    std::vector<std::string> words;
    {
        Statement read(database, "SELECT term FROM temp.typed_word ORDER BY offset");
        while (read.step())
            words.emplace_back(read.text(0));
    }
    database.execute("INSERT INTO temp.typed(typed) VALUES('delete-all')");
    return words;
}

}  // namespace hmi
