// url_append_query_string, url_append_query_parameters

#include <algorithm>

#include "tests/vector_check/driver.h"

namespace vector_check {

using namespace qx;

namespace {

Ref<URL> urlOf(const json& args) { return URL::URLWithString(args.at("url").get<std::string>()); }

json resultJson(const Ref<URL>& before, const Ref<URL>& after) {
  if (before.get() == after.get()) return {{"same", true}};
  return {{"url", after == nullptr ? json() : json(after->absoluteString()->utf8())}};
}

Outcome appendString(const json& args, const json& expect) {
  const auto url = urlOf(args);
  const auto query = args.at("query").get<std::string>();
  return compare(expect, resultJson(url, URLByAppendingQueryString(url, query)));
}

// One of several results is as good as the other; this library's follows the order given.
Outcome appendParameters(const json& args, const json& expect) {
  const auto url = urlOf(args);
  const auto parameters = MutableDictionary::init();
  for (const json& entry : args.at("params")) {
    parameters->setObject(plainValue(entry[1]), entry[0].get<std::string>());
  }
  const json actual = resultJson(url, URLByAppendingQueryParameters(url, parameters));
  if (!expect.contains("any_of")) return compare(expect, actual);
  const json& all = expect.at("any_of");
  const bool isOne =
      actual.contains("url") && std::find(all.begin(), all.end(), actual.at("url")) != all.end();
  return {isOne, actual};
}

}  // namespace

void addUrlOperations(Operations& operations) {
  operations["url_append_query_string"] = appendString;
  operations["url_append_query_parameters"] = appendParameters;
}

}  // namespace vector_check
