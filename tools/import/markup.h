// SPDX-License-Identifier: MIT
//
// Texts that are written with marks for their formatting: HTML and XML, and manual pages in roff.
#pragma once

#include <string>
#include <string_view>

namespace mardle::tools {

// With tags: it begins as a document of HTML or XML, or has an end tag or a line break of these. A
// manual page: it begins with a request or a comment of roff and has a line with the title or the
// date of such a page, or with the page to be read instead.
bool HasTags(std::string_view text);
bool IsManualPage(std::string_view text);

// The text with a blank in the place of every tag and comment, and without scripts and styles. What
// only looks like the beginning of a tag stays.
std::string WithoutTags(std::string_view text);

// What the page says, without its requests, the names of its macros, its comments and escapes.
std::string WithoutRequests(std::string_view page);

}  // namespace mardle::tools
