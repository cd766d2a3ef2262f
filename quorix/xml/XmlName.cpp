#include "quorix/xml/XmlName.h"

#include <libxml/tree.h>

namespace quorix {

bool IsXmlName(const std::string& utf8) {
    bool isWhole = utf8.find('\0') == std::string::npos;
    return isWhole && xmlValidateNCName(reinterpret_cast<const xmlChar*>(utf8.c_str()), 0) == 0;
}

}  // namespace quorix
