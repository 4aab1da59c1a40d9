// What the user reads when a request fails on its way: one Chinese sentence for each cause that curl can tell.
//
// The texts name the host or a header at most: never a URL (it may hold a password), a header's value or a body.
#pragma once

#include <string>

#include <curl/curl.h>

#include "base/error.h"

namespace ovrin {

// The failure of a finished transfer of the handle. host: the name in the request's URL.
Error transportError(CURLcode code, CURL* handle, const std::string& host);

Error invalidURLError();
Error invalidMethodError();
Error invalidHeaderNameError(const std::string& name);
Error invalidHeaderValueError(const std::string& name);
Error timeoutError();
Error headersTooLongError();
Error tooManyRedirectsError();
// To what is no https URL, where nothing else may be followed.
Error insecureRedirectError();

}  // namespace ovrin
