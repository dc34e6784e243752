#pragma once
// Label: a windowless caption drawn as a classic static label. Lines break at CR/LF and, unless
// the label sizes itself to one line, at words inside its width; text is top-aligned and drawn
// transparently over the back colour (when opaque). "&x" underlines x and makes it the access
// key; a disabled label shows the etched grey text of disabled statics.

#include <cstdint>
#include <memory>
#include <string>

#include "forms/lightweight.hpp"
#include "forms/text_layout.hpp"
#include "host/font.hpp"
#include "host/ole_types.hpp"

namespace korvex::forms {

class Label final : public InputLightweight {
  public:
    // On top of the container's windowless objects, with a copy of the container's font.
    explicit Label(DrawingSurface& container);

    [[nodiscard]] const std::string& Caption() const { return caption_; }
    void Caption(std::string value);
    [[nodiscard]] bool UseMnemonic() const { return useMnemonic_; }
    void UseMnemonic(bool value);
    // The access letter of the caption, upper-cased; 0 when there is none.
    [[nodiscard]] char32_t AccessKey() const;
    // The access key as a control declares it to its host: the letter while the label shows,
    // none while it is hidden.
    [[nodiscard]] std::u32string ShownAccessKeys() const {
        const char32_t key = Visible() ? AccessKey() : 0;
        return key ? std::u32string(1, key) : std::u32string();
    }

    // Shared: assigning one font to two labels lets both follow its changes.
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return font_; }
    void Font(std::shared_ptr<host::StdFont> value);
    [[nodiscard]] host::OLE_COLOR ForeColor() const { return foreColor_; }
    void ForeColor(host::OLE_COLOR value);
    [[nodiscard]] host::OLE_COLOR BackColor() const { return backColor_; }
    void BackColor(host::OLE_COLOR value);
    // 0 transparent, 1 opaque (the default).
    [[nodiscard]] std::int16_t BackStyle() const { return backStyle_; }
    void BackStyle(std::int16_t value);
    // 0 left, 1 right, 2 centre.
    [[nodiscard]] std::int16_t Alignment() const { return alignment_; }
    void Alignment(std::int16_t value);
    // AutoSize fits the label to its text: one line per paragraph, or with WordWrap the lines
    // that fit its width, growing downwards.
    [[nodiscard]] bool AutoSize() const { return autoSize_; }
    void AutoSize(bool value);
    [[nodiscard]] bool WordWrap() const { return wordWrap_; }
    void WordWrap(bool value);

    void Paint(platform::HDC dc, const platform::RECT& rect) const override;

  private:
    struct Layout {
        MnemonicText text;
        std::vector<TextLine> lines;
        std::vector<std::int32_t> widths;  // pixels, per line
        std::int32_t lineHeight = 0;
        std::int32_t ascent = 0;
    };
    // Lays the caption out with the label's font selected in dc; wrapWidth < 0 for no wrapping.
    [[nodiscard]] Layout LayOut(platform::HDC dc, std::int32_t wrapWidth) const;
    [[nodiscard]] bool Wraps() const { return !autoSize_ || wordWrap_; }
    void FitToText();
    void OnBoundsChanged() override { FitToText(); }
    void Subscribe();

    std::string caption_;
    bool useMnemonic_ = true;
    std::shared_ptr<host::StdFont> font_;
    std::shared_ptr<void> fontSubscription_;
    host::OLE_COLOR foreColor_ = 0x80000012;
    host::OLE_COLOR backColor_ = 0x8000000F;
    std::int16_t backStyle_ = 1;
    std::int16_t alignment_ = 0;
    bool autoSize_ = false;
    bool wordWrap_ = false;
};

}  // namespace korvex::forms
