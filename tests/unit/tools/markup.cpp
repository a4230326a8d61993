// Reads tag by tag, with the elements that are open on a stack.
#include "unit/tools/markup.h"

#include <stdexcept>

namespace orvex::tools {
namespace {

[[noreturn]] void Refuse(const std::string& what) {
  throw std::runtime_error("not well-formed: " + what.substr(0, 100));
}

void CheckReferences(const std::string& text) {
  for (std::size_t at = text.find('&'); at != std::string::npos; at = text.find('&', at + 1)) {
    const std::string name = text.substr(at + 1, text.find(';', at) - at - 1);
    const bool isNumber = name.size() > 1 && name[0] == '#' && name.find_first_not_of("0123456789", 1) == name.npos;
    if (!isNumber && name != "amp" && name != "lt" && name != "gt" && name != "quot") {
      Refuse(text.substr(at));
    }
  }
}

// `tag`: what stands between the brackets.
Element ReadTag(const std::string& tag) {
  Element element;
  std::size_t at = tag.find_first_of(" \n/");
  element.name = tag.substr(0, at);
  while (at != std::string::npos && (at = tag.find_first_not_of(" \n", at)) != std::string::npos && tag[at] != '/') {
    const std::size_t equals = tag.find('=', at);
    const char quote = equals + 1 < tag.size() ? tag[equals + 1] : ' ';
    const std::size_t end = quote == '\'' || quote == '"' ? tag.find(quote, equals + 2) : std::string::npos;
    if (equals == std::string::npos || end == std::string::npos) {
      Refuse(tag);
    }
    const std::string value = tag.substr(equals + 2, end - equals - 2);
    CheckReferences(value);
    if (!element.attributes.emplace(tag.substr(at, equals - at), value).second) {
      Refuse(tag);
    }
    at = end + 1;
  }
  return element;
}

}  // namespace

std::string Element::Get(const std::string& attribute) const {
  const auto found = attributes.find(attribute);
  return found == attributes.end() ? "" : found->second;
}

std::vector<Element> ReadMarkup(const std::string& page) {
  std::vector<Element> elements;
  std::vector<std::size_t> open;
  const std::string type = "<!DOCTYPE html>";
  std::size_t at = page.compare(0, type.size(), type) == 0 ? type.size() : 0;
  while ((at = page.find('<', at)) != std::string::npos) {
    const std::size_t end = page.find('>', at);
    if (end == std::string::npos) {
      Refuse(page.substr(at));
    }
    const std::string tag = page.substr(at + 1, end - at - 1);
    if (tag[0] == '/') {
      if (open.empty() || elements[open.back()].name != tag.substr(1)) {
        Refuse(tag);
      }
      open.pop_back();
    } else {
      elements.push_back(ReadTag(tag));
      elements.back().parent = open.empty() ? elements.size() - 1 : open.back();
      if (tag.back() != '/') {
        open.push_back(elements.size() - 1);
      }
    }
    at = page.find('<', end);
    const std::string text = page.substr(end + 1, at == std::string::npos ? at : at - end - 1);
    CheckReferences(text);
    if (!open.empty()) {
      elements[open.back()].text += text;
    }
  }
  if (!open.empty()) {
    Refuse(elements[open.back()].name + " has no end");
  }
  return elements;
}

}  // namespace orvex::tools
