// Reading a desktop entry, and finding the program in its command line.
#include "platform/linux/DesktopEntry.h"

#include <algorithm>
#include <array>
#include <limits>

#include "platform/paths.h"

namespace orrinvale {
namespace {

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::string unescaped(std::string_view value) {
    value = value.substr(0, value.find('\0'));
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            out += value[i];
            continue;
        }
        const char next = value[++i];
        switch (next) {
            case 's': out += ' '; break;
            case 'n': out += '\n'; break;
            case 't': out += '\t'; break;
            case 'r': out += '\r'; break;
            case '\\': out += '\\'; break;
            default: (out += '\\') += next;  // quotes of a command line have escapes of their own
        }
    }
    return out;
}

// How close a key's language is, 0 the closest; the plain key comes behind all of them.
std::size_t closeness(std::string_view language, const std::vector<std::string>& languages) {
    if (language.empty()) return languages.size();
    const auto found = std::find(languages.begin(), languages.end(), language);
    return found == languages.end() ? std::numeric_limits<std::size_t>::max()
                                    : static_cast<std::size_t>(found - languages.begin());
}

bool isTrue(std::string_view value) { return value == "true" || value == "1"; }

bool takeField(DesktopEntry& entry, std::string_view key, std::string_view value) {
    if (key == "Type") entry.isApplication = value == "Application";
    else if (key == "Exec") entry.exec = unescaped(value);
    else if (key == "TryExec") entry.tryExec = unescaped(value);
    else if (key == "Icon") entry.icon = unescaped(value);
    else if (key == "X-AppImage-Version") entry.version = unescaped(value);
    else if (key == "Hidden" || key == "NoDisplay") entry.isHidden |= isTrue(value);
    else return false;
    return true;
}

// Programs that do nothing but start another one, and the options of theirs that take a value.
struct Wrapper {
    std::string_view name;
    std::string_view valued;  // one letter each
};
constexpr std::array wrappers{
    Wrapper{"env", "uCS"},
    Wrapper{"nice", "n"},
    Wrapper{"ionice", "cn"},
    Wrapper{"chrt", ""},
    Wrapper{"taskset", ""},
    Wrapper{"nohup", ""},
    Wrapper{"setsid", ""},
    Wrapper{"exec", "a"},
    Wrapper{"pkexec", "u"},
    Wrapper{"sudo", "ugp"},
    Wrapper{"gksu", "u"},
    Wrapper{"gksudo", "u"},
    Wrapper{"kdesu", "u"},
    Wrapper{"gamemoderun", ""},
    Wrapper{"mangohud", ""},
    Wrapper{"prime-run", ""},
    Wrapper{"dbus-run-session", ""},
    Wrapper{"systemd-run", "pE"},
    Wrapper{"firejail", ""},
    Wrapper{"su-to-root", ""},
    Wrapper{"dbus-launch", ""},
};
constexpr std::array<std::string_view, 3> shells{"sh", "bash", "dash"};
constexpr std::array<std::string_view, 11> interpreters{
    "python", "perl", "ruby", "java", "node", "gjs", "mono", "php", "electron", "wine", "lua"};

template <class List> bool isAmong(const List& list, std::string_view name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

// "python3.11" is python, "electron22" electron.
bool isInterpreter(std::string_view name) {
    const std::size_t end = name.find_last_not_of("0123456789.-");
    return isAmong(interpreters, name.substr(0, end == std::string_view::npos ? 0 : end + 1));
}

bool isAssignment(std::string_view word) {
    const std::size_t equals = word.find('=');
    return equals != std::string_view::npos && equals != 0 &&
           word.substr(0, equals).find('/') == std::string_view::npos && word[0] != '-';
}

class Search final {
public:
    Search(const std::vector<std::string>& words, const std::string& home)
        : m_words(words), m_home(home) {}

    StartedProgram run(int depth) {
        StartedProgram out;
        while (m_at < m_words.size()) {
            if (isAssignment(m_words[m_at])) {
                ++m_at;
                continue;
            }
            const std::string word = m_words[m_at++];
            const std::string_view name = lastPathComponent(word);
            if (word == "&&" || skipsWrapper(name)) continue;
            if (word == "cd") {
                m_folder = next();
                ++m_at;
                continue;
            }
            if (name == "flatpak") return flatpak(word);
            if (name == "snap" && next() == "run") {
                ++m_at;
                skipOptions("");
                out.snap = snapOf(next());
                return out;
            }
            if (isAmong(shells, name)) return shell(word, depth);
            if (isInterpreter(name)) return script(word);
            out.program = placed(word);
            if (folderOf(word).ends_with("/snap/bin")) out.snap = snapOf(name);
            return out;
        }
        return out;
    }

private:
    [[nodiscard]] std::string next() const {
        return m_at < m_words.size() ? m_words[m_at] : std::string();
    }

    // What a shell starts after it changed the folder.
    [[nodiscard]] std::string placed(const std::string& word) const {
        const bool isRelative = word.find('/') != std::string::npos && !word.starts_with('/');
        if (!isRelative || !m_folder.starts_with('/')) return word;
        return joinPath(m_folder, word.starts_with("./") ? word.substr(2) : word);
    }

    // The command of a snap is called "NAME" or "NAME.COMMAND".
    [[nodiscard]] static std::string snapOf(std::string_view command) {
        return std::string(command.substr(0, command.find('.')));
    }

    bool skipsWrapper(std::string_view name) {
        const auto* const found =
            std::find_if(wrappers.begin(), wrappers.end(),
                         [&](const Wrapper& each) { return each.name == name; });
        if (found == wrappers.end()) return false;
        skipOptions(found->valued);
        return true;
    }

    void skipOptions(std::string_view valued) {
        while (m_at < m_words.size() && m_words[m_at].starts_with('-')) {
            const std::string& option = m_words[m_at++];
            if (option == "--") return;
            if (option.size() == 2 && valued.find(option[1]) != std::string_view::npos) ++m_at;
        }
    }

    StartedProgram flatpak(const std::string& word) {
        StartedProgram out;
        out.program = word;
        while (m_at < m_words.size() && m_words[m_at] != "run") ++m_at;
        if (m_at == m_words.size()) return out;
        ++m_at;
        skipOptions("");
        out.flatpak = next();
        out.flatpak = out.flatpak.substr(0, out.flatpak.find('/'));
        return out;
    }

    StartedProgram shell(const std::string& word, int depth) {
        while (m_at < m_words.size() && m_words[m_at].starts_with('-')) {
            const std::string option = m_words[m_at++];
            if (option.find('c') == std::string::npos || option.starts_with("--")) continue;
            if (depth == 0) return {};
            const std::vector<std::string> inner = execWords(next(), m_home);
            return Search(inner, m_home).run(depth - 1);
        }
        return script(word);
    }

    // The first word behind it that is no option; the program itself where there is none. One that
    // is given no file, but a module or a line of its own, is no program of this entry's.
    StartedProgram script(const std::string& word) {
        StartedProgram out;
        out.program = word;
        for (; m_at < m_words.size(); ++m_at) {
            const std::string& each = m_words[m_at];
            const bool isText = each == "-m" || each == "-c" || each == "-e";
            if (each.starts_with('-') && !isText) continue;
            const bool isFile = !isText && each.find('/') != std::string::npos;
            out.program = isFile ? placed(each) : std::string();
            return out;
        }
        return out;
    }

    const std::vector<std::string>& m_words;
    const std::string& m_home;
    std::size_t m_at = 0;
    std::string m_folder;  // that a shell changed to
};

// The home folder for "$HOME" and "${HOME}" at the start of `rest`, whose length is then taken;
// 0 for anything else.
std::size_t homeVariable(std::string_view rest) {
    if (rest.starts_with("${HOME}")) return 7;
    return rest.starts_with("$HOME") && (rest.size() == 5 || rest[5] == '/') ? 5 : 0;
}

class Splitter final {
public:
    Splitter(std::string_view text, const std::string& home) : m_text(text), m_home(home) {}

    std::vector<std::string> run() {
        for (m_at = 0; m_at < m_text.size(); ++m_at) take(m_text[m_at]);
        if (m_quote != 0) return {};
        endWord();
        return std::move(m_words);
    }

private:
    void take(char c) {
        if (m_quote == 0 && (c == ' ' || c == '\t' || c == '\n' || c == ';')) return endWord();
        if (c == m_quote && m_quote != 0) {
            m_quote = 0;
        } else if (m_quote == 0 && (c == '"' || c == '\'')) {
            m_quote = c;
            m_isWord = true;
        } else if (c == '\\' && m_quote != '\'' && m_at + 1 < m_text.size()) {
            add(m_text[++m_at]);
        } else if (c == '%' && m_at + 1 < m_text.size()) {
            if (m_text[++m_at] == '%') add('%');
        } else if (const std::size_t length = c == '$' ? homeVariable(m_text.substr(m_at)) : 0;
                   length != 0 && m_quote != '\'') {
            m_word += m_home;
            m_isWord = true;
            m_at += length - 1;
        } else {
            add(c);
        }
    }
    void add(char c) {
        m_word += c;
        m_isWord = true;
    }
    void endWord() {
        if (m_isWord) m_words.push_back(std::move(m_word));
        m_word.clear();
        m_isWord = false;
    }

    const std::string_view m_text;
    const std::string& m_home;
    std::size_t m_at = 0;
    char m_quote = 0;
    bool m_isWord = false;
    std::string m_word;
    std::vector<std::string> m_words;
};

}  // namespace

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view text,
                                                const std::vector<std::string>& languages) {
    std::optional<DesktopEntry> out;
    bool isInGroup = false;
    std::size_t nameRank = std::numeric_limits<std::size_t>::max();
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[')) {
            if (isInGroup) break;
            isInGroup = line == "[Desktop Entry]";
            if (isInGroup) out.emplace();
            continue;
        }
        const std::size_t equals = line.find('=');
        if (!isInGroup || line.starts_with('#') || equals == std::string_view::npos) continue;
        const std::string_view key = trimmed(line.substr(0, equals));
        const std::string_view value = trimmed(line.substr(equals + 1));
        if (takeField(*out, key, value) || !key.starts_with("Name")) continue;
        std::string_view language = key.substr(4);
        if (!language.empty() && !(language.starts_with('[') && language.ends_with(']'))) continue;
        if (!language.empty()) language = language.substr(1, language.size() - 2);
        if (const std::size_t rank = closeness(language, languages); rank < nameRank) {
            nameRank = rank;
            out->name = unescaped(value);
        }
    }
    return out;
}

std::vector<std::string> execWords(std::string_view exec, const std::string& home) {
    return Splitter(exec, home).run();
}

StartedProgram StartedProgram::of(const std::vector<std::string>& words, const std::string& home) {
    constexpr int mostShells = 3;  // within one another
    return Search(words, home).run(mostShells);
}

}  // namespace orrinvale
