// Selects from objects of an application class: described once, then read by qualifiers that are
// parsed from text, built in code, or written as expressions.
//
//     example_select                       books that a built-in qualifier accepts
//     example_select 'pages < %d' 300      books that a format accepts; %d takes the argument

#include <charconv>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace {

class Author : public qx::Object {
 public:
  Author(std::string name, int born) : name_(std::move(name)), born_(born) {}
  const std::string& name() const { return name_; }
  int born() const { return born_; }

 private:
  std::string name_;
  int born_;
};

void describe(qx::ClassBuilder<Author>& c) {
  c.name("Author").property("name", &Author::name).property("born", &Author::born);
}

// A plain struct is described in the same way, and needs no base class.
struct Book {
  std::string title;
  int year = 0;
  int pages = 0;
  qx::Ref<Author> author;
};

void describe(qx::ClassBuilder<Book>& c) {
  c.name("Book")
      .property("title", &Book::title)
      .property("year", &Book::year)
      .property("pages", &Book::pages)
      .property("author", &Book::author);
}

std::vector<Book> library() {
  const auto austen = qx::make<Author>("Jane Austen", 1775);
  const auto verne = qx::make<Author>("Jules Verne", 1828);
  return {{"Emma", 1815, 474, austen},
          {"Persuasion", 1817, 249, austen},
          {"Around the World in Eighty Days", 1872, 303, verne},
          {"Journey to the Centre of the Earth", 1864, 183, verne}};
}

void show(const char* heading, const qx::Ref<qx::QXQualifier>& qualifier) {
  std::cout << heading << ": " << qualifier->description() << '\n';
  const qx::Matching<Book> matches(qualifier);
  for (const Book& book : library()) {
    if (matches(book)) std::cout << "  " << book.title << ", " << book.year << '\n';
  }
}

// A format that is not known to the compiler goes through runtimeFormat; what is wrong with it
// raises.
int showSelected(const char* format, const char* text) {
  int number = 0;
  const char* end = text + std::strlen(text);
  const auto [stop, fault] = std::from_chars(text, end, number);
  if (fault != std::errc() || stop != end) {
    std::cerr << text << ": this is no number\n";
    return 2;
  }
  try {
    const auto explanation =
        qx::QXQualifier::explainQualifierFormat(qx::runtimeFormat(format), number);
    for (const auto& remark : explanation.remarks) {
      std::cerr << "column " << remark.column << ": " << remark.text << '\n';
    }
    if (explanation.qualifier != nullptr) show("selected", explanation.qualifier);
    return 0;
  } catch (const qx::InvalidArgumentException& refusal) {
    std::cerr << refusal.reason() << '\n';
    return 2;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3) return showSelected(argv[1], argv[2]);
  if (argc != 1) {
    std::cerr << "usage: example_select [FORMAT NUMBER]\n";
    return 2;
  }
  show("parsed", qx::qualifierWithQualifierFormat("year > %d and title like %@", 1816, "*E*"));
  show("written", qx::key("author.born") < 1800 && !(qx::key("pages") > 300));
  show("built",
       qx::QXQualifier::qualifierToMatchAnyValue(qx::dict({{"year", 1864}, {"title", "Emma"}})));
  return 0;
}
