#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::json {

enum class Kind { Null, Boolean, Number, String, Array, Object };

/// Why a text is not JSON (RFC 8259): the parser's short English description, and where it stopped.
struct ParseError {
    std::string description;
    std::size_t offset = 0;  ///< bytes from the start

    [[nodiscard]] std::string text() const;  ///< both, for a log line
};

/// Containers may be nested this deep; a deeper document is refused while it is read.
inline constexpr std::size_t kMaxDepth = 512;

/// One value of a `Document`, which must outlive it. Cheap to copy.
///
/// Look-ups answer "none" for a value of another kind; nothing is converted. Where an object holds a key twice, the
/// last one counts.
class View {
public:
    [[nodiscard]] Kind kind() const;
    [[nodiscard]] bool isObject() const { return kind() == Kind::Object; }
    [[nodiscard]] bool isArray() const { return kind() == Kind::Array; }
    [[nodiscard]] bool isNull() const { return kind() == Kind::Null; }

    [[nodiscard]] std::optional<double> number() const;         ///< exact to the last bit; always finite
    [[nodiscard]] std::optional<std::int64_t> integer() const;  ///< a number written without fraction and exponent
    [[nodiscard]] std::optional<std::string_view> string() const;
    [[nodiscard]] std::optional<bool> boolean() const;

    /// The object's member; none when it is missing or this is no object.
    [[nodiscard]] std::optional<View> member(std::string_view key) const;

    /// Elements of an array; 0 when this is none.
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] View at(std::size_t index) const;

    /// The last `count` elements of an array that holds nothing but numbers, or all of them when there are fewer.
    [[nodiscard]] std::optional<std::vector<double>> lastNumbers(std::size_t count) const;

private:
    friend class Document;
    explicit View(const void* value) : value_(value) {}
    const void* value_;
};

/// A parsed text. Immutable; may be read from any thread.
class Document {
public:
    /// Reads a whole UTF-8 text, which it keeps. Numbers are converted when they are asked for. Invalid UTF-8, nesting
    /// beyond `kMaxDepth`, an exponent above 308 and anything after the value are errors. Never recurses.
    [[nodiscard]] static std::expected<Document, ParseError> parse(std::string text);

    Document(Document&&) noexcept;
    Document& operator=(Document&&) noexcept;
    ~Document();

    [[nodiscard]] View root() const;

private:
    struct Storage;
    explicit Document(std::unique_ptr<Storage> storage);
    std::unique_ptr<Storage> storage_;
};

/// Like `Document::parse`, but a text whose top level is neither object nor array is an error too.
[[nodiscard]] std::expected<Document, ParseError> parseContainer(std::string text);

}  // namespace glintar::json
