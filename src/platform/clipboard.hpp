#pragma once
// The clipboard seam: the text a user cuts, copies and pastes between fields. The portable
// platform keeps it in memory, one per platform instance; the Windows backend uses the system's.

#include <optional>
#include <string>
#include <string_view>

namespace korvex::platform {

class Clipboard {
  public:
    virtual ~Clipboard() = default;
    // The text on the clipboard (UTF-8); none when it holds no text.
    [[nodiscard]] virtual std::optional<std::string> GetText() = 0;
    // Replaces the clipboard's contents with text; false when the clipboard is unavailable.
    virtual bool SetText(std::string_view text) = 0;
};

// A clipboard that lives in memory, for a platform without a system behind it.
class MemoryClipboard final : public Clipboard {
  public:
    [[nodiscard]] std::optional<std::string> GetText() override { return text_; }
    bool SetText(std::string_view text) override {
        text_ = std::string(text);
        return true;
    }

  private:
    std::optional<std::string> text_;
};

}  // namespace korvex::platform
