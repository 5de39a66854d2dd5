// HTML and SVG, written piece by piece. Texts and the values of attributes are escaped here, and
// nowhere else: what stands in them does nothing but stand there. Names of elements and attributes
// are the program's own words.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace vxmgr {

struct HtmlAttribute {
    const char* name;
    std::string value;
};
using HtmlAttributes = std::initializer_list<HtmlAttribute>;

// Text as it may stand between tags and in quotes. Characters that no text has are replaced.
std::string HtmlEscaped(std::string_view text);

class Html {
  public:
    // An open element; it is closed with this object.
    class Element {
      public:
        Element(Html& html, const char* name) : html_(html), name_(name) {}
        ~Element() { html_.text_ += std::string("</") + name_ + ">"; }
        Element(const Element&) = delete;
        Element& operator=(const Element&) = delete;

      private:
        Html& html_;
        const char* const name_;
    };

    [[nodiscard]] Element In(const char* name, HtmlAttributes attributes = {});
    // A whole element with a text in it, or with nothing.
    void Add(const char* name, HtmlAttributes attributes, std::string_view text);
    void Add(const char* name, std::string_view text) { Add(name, {}, text); }
    // One that has no end: <meta>.
    void AddVoid(const char* name, HtmlAttributes attributes);
    void Text(std::string_view text) { text_ += HtmlEscaped(text); }
    // Ours, as it is: the style sheet.
    void Own(std::string_view text) { text_ += text; }

    const std::string& Written() const { return text_; }

  private:
    void Begin(const char* name, HtmlAttributes attributes);

    std::string text_;
};

}  // namespace vxmgr
