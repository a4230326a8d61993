// What a person may have meant by a word that is not known.
#pragma once

#include <string>
#include <vector>

namespace orvex::tools {

// ", did you mean \"events\"?" with the nearest of `known`; empty when none is near. Near are words that become the
// same by at most two mistakes, or one in three letters of a long word, and in less than half of a short one: a letter
// that is missing, surplus or another one, or two that change places.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& known);

}  // namespace orvex::tools
