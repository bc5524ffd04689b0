#pragma once

#include <string>
#include <string_view>

// Names as text of an XML file, which is UTF-8 and cannot contain control characters.
namespace xdmf {

// True if the bytes are UTF-8 of characters that XML permits, or of control characters.
bool isUtf8(std::string_view text);

// Returns a name for an attribute or a text in XML. A name that is not UTF-8 is read as Latin-1.
// Control characters become escapes such as "\x1b".
std::string xmlName(std::string_view name);

// Returns a file name for XML, which must be read back as it is. Throws std::runtime_error for a
// name with control characters or bytes that are not UTF-8, and for one that begins or ends with a
// blank, which readers remove.
std::string xmlFileName(const std::string& name);

} // namespace xdmf
