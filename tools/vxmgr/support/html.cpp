#include "vxmgr/support/html.h"

namespace vxmgr {

std::string HtmlEscaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            case '\n':
            case '\t':
                escaped += c;
                break;
            default: {
                const bool control = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
                escaped += control ? "\xEF\xBF\xBD" : std::string(1, c);
                break;
            }
        }
    }
    return escaped;
}

void Html::Begin(const char* name, HtmlAttributes attributes) {
    text_ += std::string("<") + name;
    for (const HtmlAttribute& attribute : attributes) {
        text_ += std::string(" ") + attribute.name + "=\"" + HtmlEscaped(attribute.value) + "\"";
    }
    text_ += ">";
}

Html::Element Html::In(const char* name, HtmlAttributes attributes) {
    Begin(name, attributes);
    return {*this, name};
}

void Html::Add(const char* name, HtmlAttributes attributes, std::string_view text) {
    const Element element = In(name, attributes);
    Text(text);
}

void Html::AddVoid(const char* name, HtmlAttributes attributes) {
    Begin(name, attributes);
}

}  // namespace vxmgr
