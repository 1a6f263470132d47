// SPDX-License-Identifier: MIT
// The desktop's forms carry each menu item's tag as a property of its action, and the menus that
// hosts without a menu bar keep in memory copy them; the runtime acts on the tags of MenuTag.
// Both must give every item the tag its title stands for.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "rvtools/host_support.hpp"
#include "rvtools/menu_tags.hpp"

namespace rvtools::testing {
namespace {

using Tags = std::map<std::string, Int>;

// The title of every item that carries a tag, and the tag its title stands for.
Tags tagsByTitle() {
  Tags tags = {
      {"Open…", MenuTag::Open},
      {"Save…", MenuTag::Save},
      {"Quit", MenuTag::ForProgram},
      {"Copy Picture", MenuTag::CopyPicture},
      {"Copy Text", MenuTag::CopyText},
      {"Paste", MenuTag::Paste},
      {"Show Main Window", MenuTag::ShowMainWindow},
      {"Hide Main Window", MenuTag::HideMainWindow},
      {"Show Preferences", MenuTag::ShowPreferences},
      {"Hide Preferences", MenuTag::HidePreferences},
      {"Show Virtual Printer", MenuTag::ShowPrinter},
      {"Hide Virtual Printer", MenuTag::HidePrinter},
      {"Clear Virtual Printer", MenuTag::ClearPrinter},
      {"Show System Console", MenuTag::ShowConsole},
      {"Hide System Console", MenuTag::HideConsole},
      {"Clear System Console", MenuTag::ClearConsole},
      {"Show Pasteboard", MenuTag::ShowPasteboard},
      {"Hide Pasteboard", MenuTag::HidePasteboard},
      {"Hide Front Window", MenuTag::HideFrontWindow},
      {"Hide All Windows", MenuTag::HideAllWindows},
      {"Program Action", MenuTag::ForProgram},
  };
  for (UInt8 window = 0; window < GraphicWindowCount; ++window) {
    const std::string number = std::to_string(window);
    tags["Show Window " + number] = MenuTag::showGraphicWindow(window);
    tags["Hide Window " + number] = MenuTag::hideGraphicWindow(window);
  }
  return tags;
}

std::string fileText(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// The text between `open` and `close` at or after `from`; empty when either is missing.
std::string between(const std::string& text, const std::string& open, const std::string& close,
                    std::size_t from = 0) {
  const std::size_t start = text.find(open, from);
  if (start == std::string::npos) return {};
  const std::size_t end = text.find(close, start + open.size());
  if (end == std::string::npos) return {};
  return text.substr(start + open.size(), end - start - open.size());
}

struct FormTags {
  Tags byTitle;
  int tagProperties = 0;  // every tag property of the form, whatever carries it
};

// The tagged actions of a form: each <action> element with a "text" and a "tag" property.
FormTags formTags(const std::string& form) {
  FormTags found;
  const std::string tagProperty = R"(<property name="tag" stdset="0">)";
  for (std::size_t at = form.find(tagProperty); at != std::string::npos;
       at = form.find(tagProperty, at + 1)) {
    ++found.tagProperties;
  }
  for (std::size_t at = form.find("<action "); at != std::string::npos;
       at = form.find("<action ", at + 1)) {
    const std::string action = between(form, "<action ", "</action>", at);
    const std::string tag = between(action, tagProperty + "<number>", "</number>");
    if (tag.empty()) continue;
    const std::string title = between(action, R"(<property name="text"><string>)", "</string>");
    found.byTitle[title] = std::stoll(tag);
  }
  return found;
}

TEST(MenuTags, EveryTaggedItemCarriesTheTagOfItsTitleInTheFormsAndInMemory) {
  const Tags expected = tagsByTitle();
  Tags carried;
  for (const auto& entry : std::filesystem::directory_iterator(RVTOOLS_SHELL_FORMS)) {
    if (entry.path().extension() != ".ui") continue;
    const FormTags form = formTags(fileText(entry.path()));
    EXPECT_EQ(form.tagProperties, static_cast<int>(form.byTitle.size()))
        << entry.path() << " has a tag on something that is no titled action";
    for (const auto& [title, tag] : form.byTitle) {
      const auto known = expected.find(title);
      if (known == expected.end()) {
        ADD_FAILURE() << entry.path() << ": no tag is known for \"" << title << "\"";
      } else {
        EXPECT_EQ(tag, known->second) << entry.path() << ": \"" << title << "\"";
      }
    }
    carried.insert(form.byTitle.begin(), form.byTitle.end());
  }
  // Every item the runtime serves is there, once the forms are read together.
  for (const auto& [title, tag] : expected) {
    EXPECT_TRUE(carried.count(title)) << "no form has the item \"" << title << "\"";
  }

  Tags kept;
  for (const MenuSet::Menu& menu : MenuSet::desktopMenus()) {
    for (const MenuSet::Item& item : menu.Items) {
      if (!item.Title.empty()) kept[item.Title] = item.Tag;
    }
  }
  EXPECT_EQ(kept, carried) << "the menus in memory differ from the desktop's forms";
}

}  // namespace
}  // namespace rvtools::testing
