// The output of the tool: the standard channels, or a file. Text is in code page 1252.
#pragma once

#include <string>
#include <string_view>

namespace querytool {

/// Receives the tool's text. Lines end in "\n".
class Output {
  public:
    virtual ~Output() = default;
    /// Writes results, messages and errors.
    virtual void Write(std::string_view text) = 0;
    /// Writes the errors and messages that the switch -r sends to the standard error channel.
    virtual void WriteError(std::string_view text) = 0;
    /// Writes text that is still in a buffer.
    virtual void Flush() = 0;
};

/// The standard output and error channels.
class StandardOutput : public Output {
  public:
    void Write(std::string_view text) override;
    void WriteError(std::string_view text) override;
    void Flush() override;
};

/// A file of 8-bit text whose lines end in CR LF. WriteError still writes to the standard error channel.
/// Every failure is a platform::FileError. Text that has not been flushed is lost when the object is
/// destroyed.
class FileOutput : public Output {
  public:
    /// Makes or empties the file.
    explicit FileOutput(std::string path);
    void Write(std::string_view text) override;
    void WriteError(std::string_view text) override;
    void Flush() override;

  private:
    std::string path_;
    std::string pending_; ///< text that is not in the file yet
};

} // namespace querytool
