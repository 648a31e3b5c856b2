// standardize, index, value_for_key_path, object_value, set_object_value, store_seq, observe,
// contains_object

#include <set>

#include "frame/key_text.h"
#include "preferences/store_access.h"
#include "preferences/tree_path.h"
#include "tests/support/memory_user_defaults.h"
#include "tests/support/temporary_folder.h"
#include "tests/vector_check/driver.h"

namespace vector_check {

// Keeps the last notification.
class Listener : public qx::Object {
 public:
  void changed(const qx::Ref<qx::Notification>& n) { heard = n; }
  qx::Ref<qx::Notification> heard;
};
static void describe(qx::ClassBuilder<Listener>& c) {
  c.name("VectorListener").operation("changed:", &Listener::changed);
}

using namespace qx;
using test_support::MemoryUserDefaults;

namespace {

Ref<Dictionary> plainDictionary(const json& j) { return plainValue(j).as<Dictionary>(); }

json sorted(const std::vector<std::string>& keys) {
  return std::set<std::string>(keys.begin(), keys.end());
}
json sortedTexts(const json& list) { return std::set<std::string>(list.begin(), list.end()); }

// A store in one of the modes of the cases, with its surroundings.
class Scene {
 public:
  explicit Scene(const json& args) : mode_(args.value("mode", "file")) {
    const Ref<Dictionary> tree = plainDictionary(args.at("tree"));
    if (mode_ == "file") {
      const Ref<Data> bytes =
          PropertyListSerialization::dataWithPropertyList(tree, PropertyListFormat::xml);
      test_support::writeBytes(path(), bytes->view());
      store = QXPreferences::initWithPath(path());
    } else if (mode_ == "custom") {
      store = QXPreferences::initForCustomInfo();
      for (const auto& [key, value] : *tree) store->setObject(value, key);
      (void)store->synchronize();
    } else {
      defaults().values->addEntriesFromDictionary(tree);
      store =
          QXPreferences::initWithPath(mode_ == "emptypath" ? StringArg("") : StringArg(nullptr));
    }
    const json registered = args.value("defaults", json::object());
    for (const auto& [path, value] : registered.items()) {
      store->setDefaultObject(plainValue(value), path);
    }
    store->setAppliesImmediately(args.value("immediate", false));
    defaults().forget();
  }

  MemoryUserDefaults& defaults() { return *memory_.defaults; }
  bool isFile() const { return mode_ == "file"; }
  json tree() const { return plainJson(store->userValues()); }
  json file() const {
    const std::string bytes = test_support::readBytes(path());
    return plainJson(PropertyListSerialization::propertyListWithData(
        Data::from(bytes), PropertyListMutability::immutable, nullptr));
  }
  std::string path() const { return folder_ / "store.plist"; }

  // Writes, and reports what happened.
  json write(const std::string& keyPath, const PropertyValue& value) {
    const auto listener = make<Listener>();
    store->addObserver(listener, "changed:", keyPath);
    defaults().forget();
    store->setObject(value, keyPath);
    store->removeObserver(listener, keyPath);
    json note;
    if (const Ref<Notification> n = listener->heard) {
      note = {{"object", n->object().description()},
              {"keyPath", n->userInfo()->objectForKey("keyPath").description()}};
    }
    return report(note);
  }

  json report(const json& note) {
    return {{"note", note},
            {"dirty", store->isDirty()},
            {"mirrored", sorted(defaults().set)},
            {"removed", sorted(defaults().removed)}};
  }

  Ref<QXPreferences> store;

 private:
  test_support::WithMemoryUserDefaults memory_;
  test_support::TemporaryFolder folder_;
  std::string mode_;
};

// The keys of a step's report are a set; what a case does not tell is not compared.
Outcome compareReports(json expect, json actual) {
  const auto arrange = [](json& step) {
    for (const char* list : {"mirrored", "removed"}) {
      if (step.is_object() && step.contains(list)) step[list] = sortedTexts(step[list]);
    }
  };
  arrange(expect);
  if (expect.contains("steps")) {
    for (json& step : expect["steps"]) arrange(step);
  }
  for (const char* part : {"sys", "mirrored", "removed", "tree", "dirty", "file"}) {
    if (!expect.contains(part)) actual.erase(part);
  }
  return compare(expect, std::move(actual));
}

Outcome standardize(const json& args, const json& expect) {
  const Ref<String> path =
      args.at("path").is_null() ? nullptr : String::from(args.at("path").get<std::string>());
  const Ref<String> result = detail::standardizedKeyPath(path);
  return compare(expect, {{"path", result == nullptr ? json() : json(result->utf8())}});
}

Outcome index(const json& args, const json& expect) {
  const auto component = args.at("component").get<std::string>();
  return compare(expect, {{"index", detail::indexOfComponent(detail::ArgText(component))}});
}

Outcome valueForKeyPath(const json& args, const json& expect) {
  const Scene scene(args);
  const auto path = textOrNil(args.at("path")).as<String>();
  const detail::PathEnd end = detail::walkPath(detail::PreferencesAccess::parts(*scene.store).root,
                                               path, args.at("create").get<bool>());
  json actual = end.value.isNil() ? json{{"absent", true}} : json{{"value", plainJson(end.value)}};
  actual["parent"] = end.parent.isNil() ? json() : plainJson(end.parent);
  actual["tree"] = scene.tree();
  return compare(expect, std::move(actual));
}

json found(const PropertyValue& v) {
  return v.isNil() ? json{{"absent", true}} : json{{"value", plainJson(v)}};
}

Outcome objectValue(const json& args, const json& expect) {
  const Scene scene(args);
  return compare(expect, found(scene.store->objectForKeyPath(args.at("path").get<std::string>())));
}

PropertyValue valueOrNil(const json& args) {
  return args.contains("value") ? plainValue(args["value"]) : PropertyValue();
}

Outcome setObjectValue(const json& args, const json& expect) {
  Scene scene(args);
  json actual = scene.write(args.at("path").get<std::string>(), valueOrNil(args));
  actual["tree"] = scene.tree();
  actual["sys"] = plainJson(scene.defaults().values);
  return compareReports(expect, std::move(actual));
}

void mutate(const PropertyValue& container, const json& step) {
  const Selector operation = Selector::named(step.at(2).get<std::string>());
  std::vector<PropertyValue> arguments;
  for (std::size_t i = 3; i < step.size(); ++i) arguments.push_back(plainValue(step[i]));
  detail::performSelectorImpl(container, operation, arguments.data(), arguments.size());
}

json runStep(Scene& scene, const json& step) {
  const auto kind = step.at(0).get<std::string>();
  scene.defaults().forget();
  if (kind == "get") return found(scene.store->objectForKeyPath(step.at(1).get<std::string>()));
  if (kind == "set") return scene.write(step.at(1).get<std::string>(), plainValue(step.at(2)));
  if (kind == "remove") return scene.write(step.at(1).get<std::string>(), nullptr);
  if (kind == "sync") {
    (void)scene.store->synchronize();
  } else {
    mutate(scene.store->objectForKeyPath(step.at(1).get<std::string>()), step);
  }
  return scene.report(nullptr);
}

Outcome storeSequence(const json& args, const json& expect) {
  Scene scene(args);
  json steps = json::array();
  bool failed = false;
  for (const json& step : args.at("steps")) {
    try {
      steps.push_back(runStep(scene, step));
    } catch (const Exception&) {
      failed = true;
    }
    if (!failed) continue;
    // The kind of a failure only informs.
    const json& expected = expect.at("steps");
    const bool isExpected =
        steps.size() < expected.size() && expected[steps.size()].contains("fail");
    steps.push_back(isExpected ? expected[steps.size()] : json{{"fail", "unexpected"}});
    return compareReports(expect, {{"steps", std::move(steps)}});
  }
  json actual = {{"steps", std::move(steps)},
                 {"tree", scene.tree()},
                 {"dirty", scene.store->isDirty()},
                 {"sys", plainJson(scene.defaults().values)}};
  if (scene.isFile()) actual["file"] = scene.file();
  return compareReports(expect, std::move(actual));
}

Outcome observe(const json& args, const json& expect) {
  const test_support::WithMemoryUserDefaults memory;
  const auto store = QXPreferences::initForCustomInfo();
  std::vector<Ref<Listener>> listeners;
  for (const json& path : args.at("observe")) {
    listeners.push_back(make<Listener>());
    store->addObserver(listeners.back(), "changed:", path.get<std::string>());
  }
  const auto written = args.at("write").get<std::string>();
  const auto all = make<Listener>();
  store->addObserver(all, "changed:", written);
  store->setObject(1, written);
  json notified = json::array();
  for (std::size_t i = 0; i < listeners.size(); ++i) {
    if (listeners[i]->heard != nullptr) notified.push_back(i);
  }
  return compare(expect,
                 {{"notified", notified},
                  {"object", all->heard->object().description()},
                  {"keyPath", all->heard->userInfo()->objectForKey("keyPath").description()}});
}

bool containsObject(const PropertyValue& contents, const PropertyValue& object, bool quiet) {
  if (contents.isArray()) {
    return QXPreferencesArray::initWithArray(contents.as<Array>(), nullptr)->containsObject(object);
  }
  const auto entries = contents.as<Dictionary>();
  const auto d = quiet ? QXPreferencesDictionary::init()
                       : QXPreferencesDictionary::initWithDictionary(entries, nullptr);
  if (quiet) d->setDictionary(entries);
  return d->containsObject(object);
}

Outcome containsObjectCase(const json& args, const json& expect) {
  const bool result = containsObject(plainValue(args.at("container")),
                                     plainValue(args.at("object")), args.value("quiet", false));
  return compare(expect, {{"result", result}});
}

}  // namespace

void addPreferencesOperations(Operations& operations) {
  operations["standardize"] = standardize;
  operations["index"] = index;
  operations["value_for_key_path"] = valueForKeyPath;
  operations["object_value"] = objectValue;
  operations["set_object_value"] = setObjectValue;
  operations["store_seq"] = storeSequence;
  operations["observe"] = observe;
  operations["contains_object"] = containsObjectCase;
}

}  // namespace vector_check
