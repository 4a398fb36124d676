#include "config/CoinCatalogue.h"

#include "config/ConfigFiles.h"
#include "json/JsonEvents.h"
#include "platform/Console.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/Platform.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace glintar::config {

namespace {

/// Lengths are written in groups of seven bits, the lowest first; every byte but the last has its top bit set.
char* writeLength(char* to, std::size_t length) {
    for (; length >= 0x80; length >>= 7) {
        *to++ = static_cast<char>(0x80 | (length & 0x7f));
    }
    *to++ = static_cast<char>(length);
    return to;
}

std::size_t takeLength(const char*& from) {
    std::size_t length = 0;
    for (int shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(*from++);
        length |= static_cast<std::size_t>(byte & 0x7f) << shift;
        if (byte < 0x80) {
            return length;
        }
    }
}

std::string_view takeText(const char*& from) {
    const std::size_t length = takeLength(from);
    const std::string_view text(from, length);
    from += length;
    return text;
}

/// Packs the entries into the front of the text that they are read from. They never overtake the reading: three
/// lengths, of five bytes at most, are shorter than the three keys, the quotes and the braces of an element.
class Packer final : public json::EventHandler {
public:
    explicit Packer(std::string& text) : begin_(text.data()), end_(text.data()) {}

    [[nodiscard]] std::size_t packedSize() const { return static_cast<std::size_t>(end_ - begin_); }
    [[nodiscard]] std::size_t entryCount() const { return entryCount_; }
    [[nodiscard]] const std::string& refusal() const { return refusal_; }

    bool beginArray() override { return depth_++ == 0 || value({}); }
    bool endArray() override {
        --depth_;
        return true;
    }
    bool beginObject() override {
        if (depth_++ != 1) {
            return value({});
        }
        texts_ = {};
        return true;
    }
    bool endObject() override { return --depth_ != 1 || finishEntry(); }

    bool key(std::string_view name) override {
        field_ = static_cast<std::size_t>(std::ranges::find(kKeys, name) - kKeys.begin());
        return true;
    }
    bool string(std::string_view text) override { return scalar(text); }
    bool number(std::string_view) override { return scalar({}); }
    bool boolean(bool) override { return scalar({}); }
    bool null() override { return scalar({}); }

private:
    static constexpr std::array<std::string_view, 3> kKeys{"id", "symbol", "name"};
    static constexpr std::size_t kNoField = kKeys.size();

    bool refuse(std::string why) {
        refusal_ = std::move(why);
        return false;
    }

    bool scalar(std::string_view text) {
        ++depth_;
        const bool goesOn = value(text);
        --depth_;
        return goesOn;
    }

    /// Any value, `depth_` counting itself, but those that stand where they should: the array and its elements. The
    /// text of a value that has none is a null pointer.
    bool value(std::string_view text) {
        if (depth_ == 1) {
            return refuse("The document is not an array.");
        }
        if (depth_ == 2) {
            return refuse(fmt::format("[{}]: not an object", entryCount_));
        }
        if (depth_ == 3 && field_ != kNoField) {
            texts_[field_] = text;
        }
        return true;
    }

    bool finishEntry() {
        for (std::size_t field = 0; field < kKeys.size(); ++field) {
            if (texts_[field].data() == nullptr) {
                return refuse(fmt::format("[{}].{}: missing or no text", entryCount_, kKeys[field]));
            }
        }
        ++entryCount_;
        if (texts_[0].data() > texts_[1].data() || texts_[1].data() > texts_[2].data()) {
            // Packing one text would overwrite another that is still to come.
            aside_.clear();
            for (std::string_view& text : texts_) {
                aside_ += text;
            }
            const char* from = aside_.data();
            for (std::string_view& text : texts_) {
                text = {from, text.size()};
                from += text.size();
            }
        }
        for (const std::string_view text : texts_) {
            end_ = writeLength(end_, text.size());
            std::memmove(end_, text.data(), text.size());
            end_ += text.size();
        }
        return true;
    }

    char* begin_;
    char* end_;
    std::size_t entryCount_ = 0;
    std::size_t depth_ = 0;
    std::size_t field_ = kNoField;  // of the newest key
    std::array<std::string_view, 3> texts_;
    std::string aside_;
    std::string refusal_;
};

/// The text of the document to use, having said on the console which that is.
std::optional<std::string> readCatalogue(platform::Platform& platform) {
    platform::Console& console = platform.console;
    const auto cached = cachedCoinListFile(platform);
    if (cached && platform.files.exists(*cached)) {
        if (auto text = platform.files.read(*cached)) {
            console.print("✅ [CoinList] 成功加载 Documents 缓存列表");
            return *std::move(text);
        } else {
            console.print(fmt::format("⚠️ [CoinList] 缓存文件存在但读取失败: {}", text.error()));
        }
    }
    const auto shipped = platform.bundle.resource("coingecko_coins_list", "json");
    if (!shipped) {
        console.print("❌ [Fatal] 严重错误：Bundle 里也找不到 coingecko_coins_list.json！");
        return std::nullopt;
    }
    auto text = platform.files.read(*shipped);
    if (!text) {
        console.print(fmt::format("❌ [CoinList] Bundle 文件读取失败: {}", text.error()));
        return std::nullopt;
    }
    console.print("📦 [CoinList] 缓存为空，加载 Bundle 出厂默认列表");
    return std::move(*text);
}

}  // namespace

std::expected<CoinCatalogue, std::string> CoinCatalogue::decode(std::string text) {
    CoinCatalogue catalogue;
    catalogue.arena_ = std::move(text);
    Packer packer(catalogue.arena_);
    if (const auto read = json::readEvents(catalogue.arena_, packer); !read) {
        return std::unexpected(packer.refusal().empty() ? read.error().text() : packer.refusal());
    }
    catalogue.arena_.resize(packer.packedSize());
    catalogue.arena_.shrink_to_fit();
    // Only now, when the text is no longer there beside the packed one, which is the peak of the memory it takes.
    catalogue.entries_.reserve(packer.entryCount());
    const char* const begin = catalogue.arena_.data();
    for (const char* at = begin; catalogue.entries_.size() < packer.entryCount();) {
        catalogue.entries_.push_back(static_cast<std::uint32_t>(at - begin));
        for (int skipped = 0; skipped < 3; ++skipped) {
            takeText(at);
        }
    }
    return catalogue;
}

std::size_t CoinCatalogue::size() const {
    return entries_.size();
}

CoinEntry CoinCatalogue::operator[](std::size_t index) const {
    const char* from = arena_.data() + entries_[index];
    CoinEntry entry;
    entry.id = takeText(from);
    entry.symbol = takeText(from);
    entry.name = takeText(from);
    return entry;
}

CoinCatalogue loadCoinCatalogue(platform::Platform& platform) {
    auto text = readCatalogue(platform);
    if (!text) {
        return {};
    }
    auto catalogue = CoinCatalogue::decode(std::move(*text));
    if (!catalogue) {
        platform.console.print(fmt::format("❌ [CoinList] JSON 解析错误: {}", catalogue.error()));
        return {};
    }
    platform.console.print(fmt::format("📊 [CoinList] 数据解析完成，共 {} 个币种", catalogue->size()));
    return std::move(*catalogue);
}

}  // namespace glintar::config
