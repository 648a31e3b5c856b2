// Query parameters of URLs.
//
//     auto page = qx::URL::URLWithString("http://example.com/p?a=1&b=2");
//     URLByAppendingQueryString(page, "c=3");                   // .../p?a=1&b=2&c=3
//     URLByAppendingQueryParameters(page, qx::dict({{"a", "9"}}));   // .../p?b=2&a=9
//
// A nil URL gives nil. Thread-safe.
#pragma once

#include <QXFoundation/dictionary.h>
#include <QXFoundation/url.h>

namespace qx {

// The URL's whole text with the query text behind it, after "&" where the URL has a query (an empty
// one too) and "?" where it has none. Nothing is encoded, and a text that is no URL gives nil. THE
// TEXT GOES BEHIND A FRAGMENT, and thus becomes part of it. Without a query text (nil or "") the
// URL itself.
QX_EXPORT Ref<URL> URLByAppendingQueryString(In<URL> url, StringArg query);

// The URL with these parameters: items of its query with one of these names go, all other items
// stay where and byte for byte as they are, and the new ones follow in the dictionary's order. A
// fragment stays. Names and values are percent-encoded, all but unreserved characters and
// !$'()*,;:@/? . Names in the URL are compared with percent-encoding undone; "+" is no space.
// Without parameters (nil or empty) the URL itself. A value that is no string raises
// InvalidArgumentException.
QX_EXPORT Ref<URL> URLByAppendingQueryParameters(In<URL> url, In<Dictionary> parameters);

}  // namespace qx
