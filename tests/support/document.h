// A JSON document, or a part of one, as tests read it. Parts share the document's memory. What is
// not there is null, so a path into a document that is not as expected ends in null, too.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace support {

class Document {
  public:
    Document();  // null
    // Null when the text is no document.
    static Document Parse(const std::string& text);

    // Values to compare with.
    Document(std::nullptr_t) : Document() {}
    Document(bool value);
    Document(const char* value);
    Document(const std::string& value) : Document(value.c_str()) {}
    Document(std::signed_integral auto value) : Document(Signed(value)) {}
    Document(std::unsigned_integral auto value) : Document(Unsigned(value)) {}

    Document operator[](const std::string& key) const;
    Document operator[](std::integral auto index) const {
        return Element(static_cast<size_t>(index));
    }
    // By JSON pointer: "/result/ports/0".
    Document at(const std::string& pointer) const;
    bool contains(const std::string& key) const;
    Document back() const { return Element(size() - 1); }

    size_t size() const;
    bool empty() const { return size() == 0; }
    bool is_null() const;
    bool is_object() const;
    bool is_array() const;
    bool is_string() const;
    bool is_number() const;

    // The value; of any other kind a failure of the test.
    std::string text() const;
    int64_t number() const;
    bool flag() const;

    std::string dump() const;

    // A copy in which the place holds this JSON; null: without the place.
    Document With(const std::string& pointer, const char* json) const;

    friend bool operator==(const Document& a, const Document& b);
    friend std::ostream& operator<<(std::ostream& stream, const Document& document);

    // Over the elements of a list, or the values of an object.
    class Iterator {
      public:
        Iterator(const Document& whole, size_t at) : whole_(whole), at_(at) {}
        Document operator*() const { return whole_.Element(at_); }
        Iterator& operator++() {
            ++at_;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return at_ != other.at_; }

      private:
        const Document& whole_;
        size_t at_;
    };
    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size()}; }

  private:
    explicit Document(std::shared_ptr<const void> value) : value_(std::move(value)) {}

    static Document Signed(int64_t value);
    static Document Unsigned(uint64_t value);
    Document Element(size_t index) const;

    std::shared_ptr<const void> value_;
};

}  // namespace support
