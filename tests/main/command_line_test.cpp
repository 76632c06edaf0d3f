// Joining split arguments to a line, and parsing lines. Two further parsers, written independently of the
// program's, must agree with it on random input.
#include "main/command_line.h"

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "main/command_argument.h"

namespace kv {
namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, NoArgumentGivesAnEmptyLine) {
    EXPECT_EQ(JoinArguments({}), "");
}

TEST(CommandLine, KnownArgumentsAndPlainValuesAreUnchanged) {
    EXPECT_EQ(JoinArguments({"/server", "S", "-USER", "U"}), "/server S -USER U");
    EXPECT_EQ(JoinArguments({"/password", "a/b", "/server", "s-i"}), "/password a/b /server s-i");
}

TEST(CommandLine, AnEmptyValueAndAValueWithABlankAreQuoted) {
    EXPECT_EQ(JoinArguments({"/password", "", "/server", "a b"}), "/password \"\" /server \"a b\"");
    EXPECT_EQ(JoinArguments({" "}), "\" \"");
}

TEST(CommandLine, AValueThatLooksLikeAnArgumentIsQuoted) {
    EXPECT_EQ(JoinArguments({"/password", "/secret", "/user", "-u"}), R"(/password "/secret" /user "-u")");
    EXPECT_EQ(JoinArguments({"/helpme", "-x"}), R"("/helpme" "-x")");
}

TEST(CommandLine, ASlashInTheValueOfAPathArgumentBecomesABackslash) {
    EXPECT_EQ(JoinArguments({"/scriptfolder", "/home/user/scripts", "/sqldatapath", "/var/my data/"}),
              R"(/scriptfolder \home\user\scripts /sqldatapath "\var\my data\")");
    EXPECT_EQ(JoinArguments({"-ScriptFolder", "a/b"}), R"(-ScriptFolder a\b)");
    EXPECT_EQ(JoinArguments({"/scriptfolder", "-a/b"}), R"(/scriptfolder "-a\b")");
    EXPECT_EQ(JoinArguments({"scriptfolder", "a/b"}), "scriptfolder a/b");
}

TEST(CommandLine, AKnownArgumentAfterAPathArgumentIsUnchanged) {
    EXPECT_EQ(JoinArguments({"/scriptfolder", "/help"}), "/scriptfolder /help");
    EXPECT_EQ(JoinArguments({"/sqldatapath", "-InstallDb", "/s"}), R"(/sqldatapath -InstallDb "/s")");
}

// The first of the two further parsers: reads the split arguments.

struct Word {
    const char* name;
    bool has_value;
    bool is_path;
};

constexpr Word kWords[] = {{"help", false, false},       {"scriptfolder", true, true},
                           {"server", true, false},      {"user", true, false},
                           {"password", true, false},    {"sqldatapath", true, true},
                           {"installdb", false, false},  {"installsp", false, false},
                           {"installdts", false, false}, {"upgradedb", false, false}};

std::string Lower(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

bool Is(const std::string& argument, char prefix, const Word& word) {
    return Lower(argument) == prefix + std::string(word.name);
}

bool IsWord(const std::string& argument) {
    return std::any_of(std::begin(kWords), std::end(kWords),
                       [&](const Word& word) { return Is(argument, '/', word) || Is(argument, '-', word); });
}

struct Read {
    bool found = false;
    std::string value;

    friend bool operator==(const Read&, const Read&) = default;
};

/// The argument after the first occurrence of the word with this prefix that is not the last argument.
const std::string* After(const Words& arguments, char prefix, const Word& word) {
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (Is(arguments[i], prefix, word)) {
            return &arguments[i + 1];
        }
    }
    return nullptr;
}

Read ReadArguments(const Words& arguments, const Word& word) {
    Read read;
    read.found = std::any_of(arguments.begin(), arguments.end(), [&](const std::string& argument) {
        return Is(argument, '/', word) || Is(argument, '-', word);
    });
    const std::string* next = After(arguments, '/', word);
    next = next == nullptr ? After(arguments, '-', word) : next;
    if (!word.has_value || next == nullptr) {
        return read;
    }
    if (IsWord(*next)) {
        read.value = next->front() == '/' ? "" : *next; // only "/" tells the parser that there is no value
        return read;
    }
    read.value = *next;
    if (word.is_path) {
        std::replace(read.value.begin(), read.value.end(), '/', '\\');
    }
    return read;
}

using Random = std::mt19937;

const std::string& Pick(const Words& words, Random& random) {
    return words[random() % words.size()];
}

/// Any value that the parser can read: without quotes, blanks at its ends and known arguments.
std::string RandomValue(Random& random) {
    static const Words pieces = {"/",    "-", "\\", " ", "a",      "B",    "7",     ".",    ",",
                                 "\xFC", ":", "_",  "=", "server", "user", "x-y.z", "C:\\", "/home"};
    for (;;) {
        std::string value;
        for (auto count = random() % 7; count != 0; --count) {
            value += Pick(pieces, random);
        }
        const bool blank_end = value.starts_with(' ') || value.ends_with(' ');
        const std::string lower = Lower(value);
        const bool holds_word = std::any_of(std::begin(kWords), std::end(kWords), [&](const Word& word) {
            return lower.find(std::string("/") + word.name) != std::string::npos ||
                   lower.find(std::string("-") + word.name) != std::string::npos;
        });
        if (!blank_end && !holds_word) {
            return value;
        }
    }
}

std::string RandomWord(Random& random) {
    std::string word =
        (random() % 3 == 0 ? "-" : "/") + std::string(kWords[random() % std::size(kWords)].name);
    if (random() % 4 == 0) {
        word[1] = static_cast<char>(std::toupper(word[1]));
    }
    return word;
}

TEST(CommandLine, ParsesTenThousandRandomArgumentListsLikeASecondParser) {
    Random random(2006);
    for (int i = 0; i < 10000; ++i) {
        Words arguments;
        for (auto count = random() % 12; count != 0; --count) {
            arguments.push_back(random() % 2 == 0 ? RandomWord(random) : RandomValue(random));
        }
        const std::string line = JoinArguments(arguments);
        CommandArguments table = KnownArguments();
        for (std::size_t row = 0; row < table.size(); ++row) {
            ParseCommandArgument(line, row, table);
            const Read wanted = ReadArguments(arguments, kWords[row]);
            ASSERT_EQ(table[row].Found, wanted.found) << line << "\n" << table[row].Name;
            ASSERT_EQ(table[row].Value, wanted.value) << line << "\n" << table[row].Name;
        }
    }
}

/// The second further parser: follows the rules for a raw line step by step. Positions count from 1; 0 means
/// "not found".
class RawRules {
  public:
    explicit RawRules(const std::string& line) : line_(line), lower_(Lower(line)) {}

    Read Look(const Word& word) const {
        const std::size_t length = std::string(word.name).size();
        std::size_t place = Place(std::string("/") + word.name);
        place = place == 0 ? Place(std::string("-") + word.name) : place;
        if (place == 0 || (place != 1 && At(place - 1) != ' ') ||
            (place + length != line_.size() && At(place + length + 1) != ' ')) {
            return {};
        }
        return {true, word.has_value ? Value(word.name, length) : ""};
    }

  private:
    std::size_t Place(const std::string& text, std::size_t from = 1) const {
        return lower_.find(text, from - 1) + 1; // npos + 1 is 0
    }
    char At(std::size_t place) const { return line_[place - 1]; }

    std::string Value(const std::string& name, std::size_t length) const {
        std::size_t place = Place("/" + name + " ");
        place = place == 0 ? Place("-" + name + " ") : place;
        const std::size_t begin = place + 1 + length + 1;
        if (place == 0 || begin > line_.size() || At(begin) == '/') {
            return "";
        }
        const std::size_t end = begin < line_.size() ? Place(At(begin) == '"' ? "\"" : " ", begin + 1) : 0;
        std::string piece = line_.substr(begin - 1, end == 0 ? std::string::npos : end - begin + 1);
        TrimBlanks(piece);
        if (!piece.empty() && piece.front() == '"') {
            piece.erase(0, 1);
        }
        if (!piece.empty() && piece.back() == '"') {
            piece.pop_back();
        }
        TrimBlanks(piece);
        return piece;
    }
    static void TrimBlanks(std::string& piece) {
        while (!piece.empty() && piece.front() == ' ') {
            piece.erase(0, 1);
        }
        while (!piece.empty() && piece.back() == ' ') {
            piece.pop_back();
        }
    }

    std::string line_;
    std::string lower_;
};

TEST(CommandLine, ParsesTenThousandRandomLinesLikeAThirdParser) {
    static const Words pieces = {" ",       " ",    " ",     "\"",      "/",        "-",
                                 "a b",     "x",    "C:\\s", "/helpme", "-servers", "/user:x",
                                 "\"a b\"", "\"\"", "\t",    "x/help"};
    Random random(1252);
    for (int i = 0; i < 10000; ++i) {
        std::string line;
        for (auto count = random() % 14; count != 0; --count) {
            line += random() % 3 == 0 ? RandomWord(random) : Pick(pieces, random);
            line += random() % 2 == 0 ? " " : "";
        }
        CommandArguments table = KnownArguments();
        for (std::size_t row = 0; row < table.size(); ++row) {
            ParseCommandArgument(line, row, table);
            const Read wanted = RawRules(line).Look(kWords[row]);
            ASSERT_EQ(table[row].Found, wanted.found) << line << "\n" << table[row].Name;
            ASSERT_EQ(table[row].Value, wanted.value) << line << "\n" << table[row].Name;
        }
    }
}

} // namespace
} // namespace kv
