// Where the tool writes: the standard output and error, or a file. The file is made before anything else is
// done, so that every error is in it.
#pragma once

#include <string>
#include <string_view>

namespace querytool {

class Output {
  public:
    virtual ~Output() = default;
    /// Lines end in "\n".
    virtual void Write(std::string_view text) = 0;
    /// Writes errors and messages that -r sends to the error channel.
    virtual void WriteError(std::string_view text) = 0;
    /// Passes on everything that was written so far.
    virtual void Flush() = 0;
};

class StandardOutput : public Output {
  public:
    void Write(std::string_view text) override;
    void WriteError(std::string_view text) override;
    void Flush() override;
};

/// A file of 8-bit text whose lines end in CR LF.
class FileOutput : public Output {
  public:
    /// Makes or empties the file. Throws platform::FileError, as the other members do.
    explicit FileOutput(std::string path);
    void Write(std::string_view text) override;
    void WriteError(std::string_view text) override;
    void Flush() override;

  private:
    std::string path_;
    std::string pending_;
};

} // namespace querytool
