// Merging parameters into the query of a URL of four items: one item replaced and one added, with
// plain values and with values to encode. Beside uriparser, QUrlQuery of Qt and Boost.URL, where
// they were installed when this was built. Every way starts with a URL that is parsed already, and
// makes a new one and its text; all must make the same text before anything is timed. Nanoseconds a
// merge; "qt/ours" is how many times longer Qt takes.

#include <uriparser/Uri.h>

#include <memory>
#include <string>
#include <utility>

#include <QXFoundation/QXFoundation.h>

#include "bench/ways.h"

#ifdef QX_BENCH_QT
#include <QUrl>
#include <QUrlQuery>
#endif
#ifdef QX_BENCH_BOOST_URL
#include <boost/url.hpp>
#endif

namespace bench {
namespace {

constexpr int kMerges = 2000;

const std::string kUrl = "https://www.example.com/search/all?query=shoes&size=42&color=red&page=3";

struct Parameter {
  std::string name;
  std::string value;
};
using Parameters = std::vector<Parameter>;

const Parameters kPlain = {{"color", "blue"}, {"order", "price"}};
const Parameters kEncoded = {{"color", "blue & white"},
                             {"sort by",
                              "pri\xC3\xA7"
                              "e"}};

bool isNamed(const Parameters& parameters, std::string_view name) {
  for (const Parameter& p : parameters) {
    if (p.name == name) return true;
  }
  return false;
}

class Ours {
 public:
  explicit Ours(const Parameters& parameters) {
    for (const Parameter& p : parameters) parameters_->setObject(p.value, p.name);
  }
  std::string text() const { return std::string(merge()->text()); }
  qx::Ref<qx::URL> merge() const { return URLByAppendingQueryParameters(url_, parameters_); }

 private:
  qx::Ref<qx::URL> url_ = qx::URL::URLWithString(kUrl);
  qx::Ref<qx::MutableDictionary> parameters_ = qx::MutableDictionary::init();
};

// uriparser takes a query apart and puts one together; the list between is changed by hand.
class UriParser {
 public:
  explicit UriParser(const Parameters& parameters) : parameters_(parameters) {
    require(uriParseSingleUriA(&url_, kUrl.c_str(), nullptr) == URI_SUCCESS, "uriparser");
  }
  UriParser(const UriParser&) = delete;
  UriParser& operator=(const UriParser&) = delete;
  ~UriParser() { uriFreeUriMembersA(&url_); }

  std::string merge() const {
    UriQueryListA* items = nullptr;
    int count = 0;
    uriDissectQueryMallocA(&items, &count, url_.query.first, url_.query.afterLast);
    const std::unique_ptr<UriQueryListA, void (*)(UriQueryListA*)> held(items, &uriFreeQueryListA);
    std::vector<UriQueryListA> kept;
    for (const UriQueryListA* item = items; item != nullptr; item = item->next) {
      if (!isNamed(parameters_, item->key)) kept.push_back(*item);
    }
    for (const Parameter& p : parameters_) {
      kept.push_back({p.name.c_str(), p.value.c_str(), nullptr});
    }
    for (std::size_t i = 1; i < kept.size(); ++i) kept[i - 1].next = &kept[i];
    kept.back().next = nullptr;
    return std::string(kUrl.c_str(), url_.query.first) + composed(kept.data());
  }

 private:
  static std::string composed(const UriQueryListA* items) {
    int room = 0;
    uriComposeQueryCharsRequiredExA(items, &room, URI_FALSE, URI_FALSE);
    std::string query(static_cast<std::size_t>(room) + 1, '\0');
    int written = 0;
    uriComposeQueryExA(query.data(), items, room + 1, &written, URI_FALSE, URI_FALSE);
    query.resize(static_cast<std::size_t>(written) - 1);
    return query;
  }

  const Parameters& parameters_;
  UriUriA url_{};
};

#ifdef QX_BENCH_QT
class Qt {
 public:
  explicit Qt(const Parameters& parameters) : url_(QString::fromStdString(kUrl)) {
    for (const Parameter& p : parameters) {
      parameters_.emplace_back(QString::fromStdString(p.name), QString::fromStdString(p.value));
    }
  }
  QByteArray merge() const {
    QUrlQuery query(url_);
    for (const auto& [name, value] : parameters_) query.removeAllQueryItems(name);
    for (const auto& [name, value] : parameters_) query.addQueryItem(name, value);
    QUrl merged = url_;
    merged.setQuery(query);
    return merged.toEncoded();
  }

 private:
  QUrl url_;
  std::vector<std::pair<QString, QString>> parameters_;
};
#endif

#ifdef QX_BENCH_BOOST_URL
class BoostUrl {
 public:
  explicit BoostUrl(const Parameters& parameters) : url_(kUrl), parameters_(parameters) {}
  boost::urls::url merge() const {
    boost::urls::url merged = url_;
    auto query = merged.params();
    for (const Parameter& p : parameters_) query.erase(p.name);
    for (const Parameter& p : parameters_) query.append({p.name, p.value});
    return merged;
  }

 private:
  boost::urls::url url_;
  const Parameters& parameters_;
};
#endif

template <class Work>
std::function<void()> many(Work work) {
  return [work] {
    for (int i = 0; i < kMerges; ++i) benchmark::DoNotOptimize(work());
  };
}

void merge(benchmark::State& state, const Parameters& parameters) {
  const Ours ours(parameters);
  const std::string expected = ours.text();
  std::vector<Way> ways{{"ours", many([&] { return ours.merge(); })}};
  const UriParser uriParser(parameters);
  require(uriParser.merge() == expected, "uriparser: " + uriParser.merge());
  ways.push_back({"uriparser", many([&] { return uriParser.merge(); })});
#ifdef QX_BENCH_QT
  const Qt qt(parameters);
  require(qt.merge() == expected.c_str(), "Qt: " + qt.merge().toStdString());
  ways.push_back({"qt", many([&] { return qt.merge(); })});
#endif
#ifdef QX_BENCH_BOOST_URL
  const BoostUrl boost(parameters);
  require(boost.merge().buffer() == expected, "Boost.URL: " + std::string(boost.merge().buffer()));
  ways.push_back({"boost", many([&] { return boost.merge(); })});
#endif
  compareWays(state, ways, kMerges, 31);
}

BENCHMARK_CAPTURE(merge, plain, kPlain)->Iterations(1);
BENCHMARK_CAPTURE(merge, encoded, kEncoded)->Iterations(1);

}  // namespace
}  // namespace bench
