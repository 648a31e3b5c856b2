// The road of a setting: written by key path, heard by observers, saved to a file, read again.
//
//     example_preferences [FILE]      writes FILE; without one, a file of the temporary folder

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/preferences.h>
#include <QXFoundation/preferences_array.h>

namespace {

// Settings with a type, and a value for those who never chose one.
constexpr qx::PreferenceKey<int> kFontSize{"editor.fontSize", 11};
constexpr qx::PreferenceKey<std::string> kTheme{"editor.theme", "light"};

// A part of the application that wants to hear of changes by selector.
class StatusLine : public qx::Object {
 public:
  void settingChanged(const qx::Ref<qx::Notification>& n) {
    std::cout << "  status line: " << n->userInfo()->objectForKey("keyPath").description()
              << " was written\n";
  }
};
void describe(qx::ClassBuilder<StatusLine>& c) {
  c.name("StatusLine").operation("settingChanged:", &StatusLine::settingChanged);
}

bool run(const std::string& path) {
  auto preferences = qx::QXPreferences::initWithPath(path);
  const auto status = qx::make<StatusLine>();
  preferences->addObserver(status, "settingChanged:", "layout.frames[0].width");
  const qx::Observation theme = preferences->observe(
      kTheme, [](const std::string& name) { std::cout << "  theme is now " << name << '\n'; });

  std::cout << "font size before anyone chose: " << preferences->get(kFontSize) << '\n';
  std::cout << "writing:\n";
  preferences->set(kTheme, "dark");
  preferences->set(kFontSize, 12);
  // The dictionary "layout" and the array "frames" come into being on the way.
  preferences->setInteger(640, "layout.frames[0].width");
  preferences->setObject(qx::array("letter.txt", "notes.txt"), "recent");

  // What the store holds can be changed directly; the store is then dirty, but nobody is told.
  preferences->arrayForKeyPath("recent").as<qx::QXPreferencesArray>()->insertObject("new.txt", 0);

  std::cout << "dirty: " << (preferences->isDirty() ? "yes" : "no") << '\n';
  if (!preferences->synchronize()) return false;
  std::cout << "dirty after saving: " << (preferences->isDirty() ? "yes" : "no") << '\n';

  const auto again = qx::QXPreferences::initWithPath(path);
  std::cout << "read again: " << again->get(kTheme) << ", " << again->get(kFontSize) << ", width "
            << again->integerForKeyPath("layout.frames[0].width") << ", "
            << again->stringForKeyPath("recent[0]").description() << '\n';
  if (const auto height = again->get<int>("layout.frames[0].height")) {
    std::cout << "height " << *height << '\n';
  } else {
    std::cout << "no height is stored\n";
  }
  std::cout << "the file:\n" << std::ifstream(path).rdbuf();
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const bool isGiven = argc > 1;
  const std::string path =
      isGiven ? argv[1] : (std::filesystem::temp_directory_path() / "example.plist").string();
  if (!isGiven) std::remove(path.c_str());
  const bool saved = run(path);
  if (!isGiven) std::remove(path.c_str());
  if (!saved) std::cerr << path << " could not be written\n";
  return saved ? 0 : 1;
}
