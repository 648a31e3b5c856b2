// Settings of the wrong kind, observations nobody keeps.

#include <QXFoundation/preferences.h>

namespace {

constexpr qx::PreferenceKey<int> kWidth{"ui.width", 80};
constexpr qx::PreferenceKey<bool> kVisible{"ui.visible", true};
constexpr qx::PreferenceKey<std::string> kTitle{"ui.title", "untitled"};

[[maybe_unused]] void use(qx::QXPreferences& p) {
  p.set(kWidth, p.get(kWidth) + 1);
  p.set(kVisible, false);
  p.set(kTitle, "text");
  const qx::Observation o = p.observe(kWidth, [](int) {});
  (void)p.synchronize();

#if MISUSE == 1
  // EXPECT-ERROR(a real number for an integer key): PreferenceValueFor
  p.set(kWidth, 2.5);
#endif

#if MISUSE == 2
  // EXPECT-ERROR(an integer for a bool key): PreferenceValueFor
  p.set(kVisible, 1);
#endif

#if MISUSE == 3
  // EXPECT-ERROR(a number for a text key): PreferenceValueFor
  p.set(kTitle, 5);
#endif

#if MISUSE == 4
  // EXPECT-ERROR(an integer as a bool): no matching (member )?function for call to .*setBool
  p.setBool(1, "ui.visible");
#endif

#if MISUSE == 5
  // EXPECT-ERROR(a wide integer): no matching (member )?function for call to .*setInteger
  p.setInteger(5L, "ui.width");
#endif

#if MISUSE == 6
  // EXPECT-ERROR(a key of a type that is no setting): constraint
  constexpr qx::PreferenceKey<char> kLetter{"ui.letter", 'a'};
  (void)kLetter;
#endif

#if MISUSE == 7
  // EXPECT-ERROR(a selector without an argument): the_selector_needs_one_colon_for_each_argument
  p.addObserver(nullptr, "changed", "ui.width");
#endif

#if MISUSE == 8
  // EXPECT-ERROR(a callable of something else): no matching (member )?function for call to
  // .*observe
  (void)p.observe("ui.width", [](double) {});
#endif

#if MISUSE == 9
  // EXPECT-ERROR(an observation copied): (deleted|implicitly-deleted)
  qx::Observation copy = o;
#endif
}

}  // namespace
