// ParseFileLog: the file that remembers how much the last clean recovered, and when.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "engine/cleaning/FileLog.h"

namespace orrinvale {

/// One line, "logName=NAME&&date=DATE&&iSize=BYTES", with no end. The file is replaced whole or not
/// at all. One thread.
class ParseFileLog final {
public:
    /// `folder`: the program's state folder, in which the file is. `resources`: where the program's
    /// own data files are.
    explicit ParseFileLog(std::string folder, std::string resources = {})
        : m_folder(std::move(folder)), m_resources(std::move(resources)) {}

    /// Bytes that the last clean recovered; the pointer, which may be null, gets its date. Without
    /// a file, and for one that can not be read, that is 0 and now. A date in the file that is none
    /// gives nothing: its text then makes UtilityFunction::parseDateTime() throw, so that whoever
    /// shows it asks first.
    [[nodiscard]] std::uint64_t getSize(std::optional<Date>* date) const;

    /// Replaces the record; false when it could not be written.
    [[nodiscard]] bool setSize(std::uint64_t size, Date LogDate) const;

    /// Fills the record. The text is not looked at.
    void readFileLog(std::string_view path, FileLog& FileLogItem) const;
    /// The first two are not looked at.
    [[nodiscard]] bool writeFileLog(std::string_view path, std::string_view FileName,
                                    const FileLog& logStruct) const;

    /// What the text does not hold stays as the record had it: pieces between "&&" that are not a
    /// name, one "=" and a value, and names that are not known, mean nothing.
    static void parseStringToLog(std::string_view text, FileLog& logItem);
    [[nodiscard]] static std::string parseLogToString(const FileLog& log);

    /// Makes the folder where it is missing; that this may fail shows when the file is written.
    [[nodiscard]] std::string getLogFilePath() const;
    [[nodiscard]] const std::string& getProcessPath() const { return m_resources; }

    /// Who shows messages to the person; null for nobody. Main thread.
    static void setMessages(std::function<void(const std::string& text)> show);
    /// Shows the text over the window and returns; without anybody who shows it, the log gets it.
    /// Main thread.
    static void MessageBox(const std::string& text);

private:
    const std::string m_folder;
    const std::string m_resources;
};

}  // namespace orrinvale
