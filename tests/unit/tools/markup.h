// The elements of a page, for tests of what it consists of.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace orvex::tools {

struct Element {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::size_t parent = 0;  // index of the element around it; the outermost has its own
  std::string text;        // directly in it

  bool Has(const std::string& attribute) const { return attributes.count(attribute) > 0; }
  // Empty when the element has no such attribute.
  std::string Get(const std::string& attribute) const;
};

// The elements in the order in which they begin. Throws std::runtime_error where the page is not well-formed: each
// element has its end or ends itself, values are quoted and an attribute comes once, "&" and "<" stand for nothing
// else.
std::vector<Element> ReadMarkup(const std::string& page);

}  // namespace orvex::tools
