#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/history/Database.h"

namespace hmi {

/// The words that the history's index knows. Of one connection. Throws DatabaseError.
class HistoryVocabulary {
public:
    explicit HistoryVocabulary(Database& database);

    /// What this beginning of a word, or of a phrase's last word, may stand for, each as it is
    /// looked up: the index would walk all rows of all of them, and not only those that a page
    /// takes. Nothing when there are too many.
    std::optional<std::vector<std::string>> startingWith(std::string_view beginning);

private:
    /// The words of a text as the index has them.
    std::vector<std::string> wordsOf(std::string_view text);

    Database& database;
};

}  // namespace hmi
