// tree_script

#include <functional>
#include <map>
#include <utility>

#include "tests/vector_check/driver.h"
#include "tests/vector_check/extended_values.h"

namespace vector_check {

class Script;

// A node that tells its script of visits, and of being asked for equality.
class ScriptNode : public qx::QXTree {
 public:
  ScriptNode(Script& script, std::string n, const qx::PropertyValue& object)
      : QXTree(object), name(std::move(n)), script_(script) {}
  bool isEqual(const qx::PropertyValue& other) const override;
  void visit();
  void visitWith(const qx::PropertyValue& argument);

  const std::string name;

 private:
  Script& script_;
};
void describe(qx::ClassBuilder<ScriptNode>& c) {
  c.name("ScriptNode").inherits<qx::QXTree>();
  c.operation("visit", &ScriptNode::visit).operation("visitWith:", &ScriptNode::visitWith);
}

using namespace qx;

// One case: the nodes and payloads by their names, and what is observed.
class Script {
 public:
  Script() = default;
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;
  ~Script() {
    for (const auto& [name, node] : nodes_) node->setParent(nullptr);
  }

  json run(const json& step) {
    const auto name = step.at(0).get<std::string>();
    static const std::map<std::string, json (Script::*)(const json&)> steps = {
        {"new", &Script::makeNode},
        {"addChild", &Script::addChild},
        {"removeChild", &Script::removeChild},
        {"removeFromParent", &Script::leave},
        {"addChildItem", &Script::addItem},
        {"removeChildItem", &Script::removeItem},
        {"containsItem", &Script::contains},
        {"containsItem_deep", &Script::containsDeep},
        {"indexOfItem", &Script::index},
        {"isEqual", &Script::equal},
        {"findItem_deep", &Script::find},
        {"findItem_trace", &Script::findTraced},
        {"childs", &Script::childs},
        {"count", &Script::count},
        {"isLeaf", &Script::leaf},
        {"childAtIndex", &Script::child},
        {"parent", &Script::parent},
        {"setParent", &Script::setParent},
        {"object", &Script::object},
        {"traverse", &Script::traverse},
    };
    return (this->*steps.at(name))(step);
  }

  void asked(const ScriptNode& node) { asked_.push_back(node.name); }
  void visited(const ScriptNode& node, const json& report) {
    visits_.push_back(report);
    const auto found = duringVisit_.find(node.name);
    if (found == duringVisit_.end()) return;
    const json steps = std::exchange(found->second, json::array());
    for (const json& step : steps) run(step);
  }
  json nameOf(const PropertyValue& v) const {
    if (const auto* node = v.peek<ScriptNode>()) return node->name;
    for (const auto& [name, payload] : payloads_) {
      if (isSame(payload, v)) return name;
    }
    return nullptr;
  }

 private:
  // A node, or a payload, which is made when it is first named. Null is nil.
  PropertyValue item(const json& name) {
    if (name.is_null()) return {};
    const auto text = name.get<std::string>();
    if (text[0] == 'n') return nodes_.at(text);
    const auto found = payloads_.try_emplace(text, String::from(text)).first;
    return found->second;
  }
  Ref<ScriptNode> node(const json& name) {
    return name.is_null() ? nullptr : nodes_.at(name.get<std::string>());
  }
  Ref<ScriptNode> enter(const json& name, const PropertyValue& payload) {
    const auto text = name.get<std::string>();
    return nodes_[text] = make<ScriptNode>(*this, text, payload);
  }

  json makeNode(const json& s) {
    enter(s.at(1), item(s.at(2)));
    return nullptr;
  }
  json addChild(const json& s) {
    node(s.at(1))->addChild(node(s.at(2)));
    return nullptr;
  }
  json removeChild(const json& s) {
    node(s.at(1))->removeChild(node(s.at(2)));
    return nullptr;
  }
  json leave(const json& s) {
    node(s.at(1))->removeFromParent();
    return nullptr;
  }
  // What addChildItem does, with a node that can be traced; the plain one is tried on the way.
  json addItem(const json& s) {
    const auto parent = node(s.at(1));
    const auto plain = parent->addChildItem(item(s.at(2)));
    const bool right = isSame(plain->object(), item(s.at(2))) &&
                       plain->parent().get() == parent.get() &&
                       isSame(parent->childs()->lastObject(), plain);
    plain->setParent(nullptr);
    parent->childs()->removeLastObject();
    parent->addChild(enter(s.at(3), item(s.at(2))));
    return right ? s.at(3) : json("addChildItem made a wrong node");
  }
  json removeItem(const json& s) {
    node(s.at(1))->removeChildItem(item(s.at(2)));
    return nullptr;
  }
  json contains(const json& s) { return node(s.at(1))->containsItem(item(s.at(2))); }
  json containsDeep(const json& s) {
    return node(s.at(1))->containsItem(item(s.at(2)), s.at(3).get<bool>());
  }
  json index(const json& s) { return node(s.at(1))->indexOfItem(item(s.at(2))); }
  json equal(const json& s) { return node(s.at(1))->isEqual(item(s.at(2))); }
  json find(const json& s) {
    return nameOf(node(s.at(1))->findItem(item(s.at(2)), s.at(3).get<bool>()));
  }
  json findTraced(const json& s) {
    asked_ = json::array();
    const json found = find(s);
    return {{"found", found}, {"asked", asked_}};
  }
  json childs(const json& s) {
    const auto list = node(s.at(1))->childs();
    if (list == nullptr) return nullptr;
    json names = json::array();
    for (const PropertyValue& child : *list) names.push_back(nameOf(child));
    return names;
  }
  json count(const json& s) { return node(s.at(1))->count(); }
  json leaf(const json& s) { return node(s.at(1))->isLeaf(); }
  json child(const json& s) {
    try {
      return nameOf(node(s.at(1))->childAtIndex(s.at(2).get<std::size_t>()));
    } catch (const Exception& e) {
      return {{"raise", e.name()}};
    }
  }
  json parent(const json& s) { return nameOf(node(s.at(1))->parent()); }
  json setParent(const json& s) {
    node(s.at(1))->setParent(node(s.at(2)));
    return nullptr;
  }
  json object(const json& s) { return nameOf(node(s.at(1))->object()); }

  json traverse(const json& s) {
    const auto top = node(s.at(1));
    const json before = std::exchange(visits_, json::array());
    if (s.size() > 4) {
      for (const auto& entry : s.at(4).items()) duringVisit_[entry.key()] = entry.value();
    }
    walk(*top, s.at(2).get<std::string>(), s.at(3));
    duringVisit_.clear();
    return std::exchange(visits_, before);
  }
  void walk(ScriptNode& top, const std::string& order, const json& argument) {
    if (argument.is_null()) {
      if (order == "preorder") return top.traversePreorder("visit");
      if (order == "inorder") return top.traverseInorder("visit");
      return top.traversePostorder("visit");
    }
    const PropertyValue a = item(argument);
    if (order == "preorder") return top.traversePreorder("visitWith:", a);
    if (order == "inorder") return top.traverseInorder("visitWith:", a);
    top.traversePostorder("visitWith:", a);
  }

  std::map<std::string, Ref<ScriptNode>> nodes_;
  std::map<std::string, PropertyValue> payloads_;
  std::map<std::string, json> duringVisit_;
  json visits_ = json::array();
  json asked_ = json::array();
};

bool ScriptNode::isEqual(const PropertyValue& other) const {
  script_.asked(*this);
  return QXTree::isEqual(other);
}
void ScriptNode::visit() { script_.visited(*this, name); }
void ScriptNode::visitWith(const PropertyValue& argument) {
  script_.visited(*this, json::array({name, script_.nameOf(argument)}));
}

namespace {

Outcome treeScript(const json& args, const json& expect) {
  Script script;
  json results = json::array();
  for (const json& step : args.at("steps")) results.push_back(script.run(step));
  return compare(expect, results);
}

}  // namespace

void addTreeOperations(Operations& operations) { operations["tree_script"] = treeScript; }

}  // namespace vector_check
