// Reads one part of a workbook as XML: elements and texts as they come, nothing kept.
#pragma once

#include <QString>

#include <string_view>

#include "tables/ZipFile.h"

namespace pollarix::tables {

// Attributes of an element, without the prefixes of their name spaces.
class XmlAttributes {
  public:
    explicit XmlAttributes(const char** pairs) : pairs_(pairs) {}
    // "" for none.
    std::string_view Of(std::string_view name) const;

  private:
    const char** pairs_;
};

class XmlHandler {
  public:
    virtual ~XmlHandler() = default;
    // Names come without their name space. False from any of them ends the reading.
    virtual bool Start(std::string_view name, const XmlAttributes& attributes) = 0;
    virtual bool End(std::string_view /*name*/) { return true; }
    virtual bool Text(std::string_view /*utf8*/) { return true; }
    virtual void Progress(double /*read*/) {}
};

// Throws InvalidArgument for what is no XML, has a document type, or a single tag of a size that
// nothing needs; and what the handler throws.
void ReadXml(const ZipFile& file, const QString& part, std::int64_t most, XmlHandler& handler);

} // namespace pollarix::tables
