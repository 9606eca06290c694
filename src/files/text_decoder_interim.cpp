#include "base/utf8.h"
#include "files/raw_text.h"
#include "files/text_decoder.h"
namespace {
class Interim final : public TextDecoder {
public:
    explicit Interim(Encoding form) : form_(form) {}
    std::size_t Decode(std::span<const std::byte> bytes, bool last, String& text, std::size_t& invalid) override {
        invalid = 0;
        const RawText raw = AsRawText(bytes);
        if (form_ == Encoding::Ansi) { for (auto b : raw) text += static_cast<char16_t>(b); return raw.size(); }
        if (IsWide(form_)) {
            std::size_t i = 0;
            for (; i + 2 <= raw.size(); i += 2) text += UnitAtStart(raw.subspan(i), form_ == Encoding::Utf16LittleEndian);
            if (last && i < raw.size()) invalid = 1;
            return i;
        }
        String got;
        std::string_view narrow(reinterpret_cast<const char*>(raw.data()), raw.size());
        if (FromUtf8(narrow, got)) { text += got; return raw.size(); }
        text += got;
        std::size_t taken = ToUtf8(got).size();
        if (last || raw.size() - taken > 3) invalid = 1;
        return taken;
    }
private:
    Encoding form_;
};
}
std::unique_ptr<TextDecoder> MakeTextDecoder(ErrorRecord&, const FileEncoding& e) { return std::make_unique<Interim>(e.form); }
