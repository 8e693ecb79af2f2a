#include "platform/appkit/NSOutlineView.h"
#include "platform/appkit/outline/OutlineViewWidget.h"
#include "tests/appkit/Steps.h"

#include <algorithm>
#include <cctype>

namespace tarn::test {
namespace {

struct Item final : NSObject {
  explicit Item(char itemName) : name(itemName) {}
  char name;
};

// The root "R", expanded, has the servers "a" (with the databases "0" and "1") and "b"; `log` has what it asks.
class Outline : public RowSteps<NSOutlineView, OutlineViewWidget>,
                protected NSOutlineViewDataSource,
                protected NSOutlineViewDelegate {
protected:
  Outline() {
    view.setDataSource(this);
    view.setDelegate(this);
    view.reloadData();
    show(*widget);
    view.expandItem(item("R"));
    settle();
    verbs["tree"] = [this](auto& tree) { trees[tree[0]] = tree.substr(2); };
    verbs["name"] = [this](auto& names) { texts[names[0]] = names.substr(2); };
    verbs["reload"] = [this](auto& name) { view.reloadItem(name.empty() ? nullptr : item(name), true); };
    verbs["refresh"] = [this](auto& name) { view.reloadItem(item(name)); };
    verbs["expand"] = [this](auto& name) { view.expandItem(item(name)); };
    verbs["collapse"] = [this](auto& name) { view.collapseItem(item(name)); };
    verbs["row"] = [this](auto& name) { log.add(std::to_string(view.rowForItem(item(name)))); };
    verbs["select"] = [this](auto&) { view.selectRowIndexes({2, 3, 4, 99}); };
    verbs["allow"] = [this](auto& all) { allows = !all.empty(); };
  }

  NSItem item(const std::string& name) {
    return items.try_emplace(name.back(), std::make_shared<Item>(name.back())).first->second;
  }
  static char name(const NSItem& item) { return item ? static_cast<Item&>(*item).name : 0; }
  static bool isDatabase(const NSItem& item) { return std::isdigit(name(item)); }
  int numberOfChildrenOfItem(const NSItem& item) override {
    ++questions;
    return static_cast<int>(trees[name(item)].size());
  }
  NSItem childOfItem(int index, const NSItem& parent) override {
    return item({trees[name(parent)][static_cast<std::size_t>(index)]});
  }
  bool isItemExpandable(const NSItem& item) override { return !isDatabase(item); }
  NSOutlineCell viewForItem(const NSItem& item) override {
    const std::string text = texts.try_emplace(name(item), 1, name(item)).first->second;
    return {NSImage(), text, text + "&"};
  }
  bool shouldShowOutlineCellForItem(const NSItem& item) override { return !isDatabase(item) && name(item) != 'R'; }
  bool shouldExpandItem(const NSItem& item) override { return answer("expand ", item); }
  bool shouldSelectItem(const NSItem& item) override { return answer("select ", item); }
  bool answer(const std::string& question, const NSItem& item) {
    log.add(question + name(item));
    if (whenAsked) whenAsked();
    return allows;
  }

  QModelIndex index(const NSItem& item) const { return widget->items().indexOf(item); }
  // The rows from top to bottom, the selected ones in brackets.
  std::string shown() override {
    std::string rows;
    const std::vector<int> selected = view.selectedRowIndexes();
    for (int row = 0; row < view.numberOfRows(); ++row) {
      const NSItem item = view.itemAtRow(row);
      const std::string text = index(item).data().toString().toStdString();
      rows += std::count(selected.begin(), selected.end(), row) == 0 ? text : "[" + text + "]";
      EXPECT_EQ(view.rowForItem(item), row);
      EXPECT_EQ(widget->triangleRect(index(item)).isValid(), shouldShowOutlineCellForItem(item));
    }
    return rows;
  }
  // The text of an item, or behind a ">" its triangle.
  QRect rect(const std::string& what) {
    return what[0] == '>' ? widget->triangleRect(index(item(what))) : widget->visualRect(index(item(what)));
  }
  QPoint at(const std::string& what) override { return rect(what).center(); }

  std::map<char, NSItem> items;
  std::map<char, std::string> trees{{0, "R"}, {'R', "ab"}, {'a', "01"}};
  std::map<char, std::string> texts;
  bool allows = true;
  std::function<void()> whenAsked;
  int questions = 0;
};

}  // namespace

TEST_F(Outline, ExpandsCollapsesAndReloadsByCodeWithoutAskingAndKeepsTheRestByItem) {
  // clang-format off
  run({{"expand a; expand 0; expand s", "", "Ra01b"},
       {"collapse R; row 1; expand R", "-1", "Ra01b"},
       {"select", "", "Ra[0][1][b]"},
       {"tree R=zab; reload; row a", "2", "Rza[0][1][b]"},
       {"name 0=x; refresh 0; tree R=baz; tree a=1", "", "Rza[x][1][b]"},
       {"reload R", "", "R[b]a[1]z"},
       {"tree R=az; tree a=10; reload", "", "Ra[1]xz"},
       {"collapse a", "", "Raz"}});
  // clang-format on
}

TEST_F(Outline, AsksAboutWhatTheUserDoes) {
  // clang-format off
  run({{"allow; click >a", "expand a", "Rab"},
       {"click a", "select a", "Rab"},
       {"allow all; click >a", "expand a", "Ra01b"},
       {"click >a", "", "Rab"},
       {"click a", "select a", "R[a]b"},
       {"click a", "select a", "R[a]b"},
       {"again a", "", "R[a]b"},
       {"again >a", "expand a", "R[a]01b"},
       {"key Left", "", "R[a]b"},
       {"key Right", "expand a", "R[a]01b"},
       {"key Right", "select 0", "Ra[0]1b"},
       {"key Left", "select a", "R[a]01b"},
       {"key Down Down Up", "select 0, select 1, select 0", "Ra[0]1b"},
       {"key End Down", "select b", "Ra01[b]"},
       {"key PgUp PgDown", "select R, select b", "Ra01[b]"},
       {"allow; key Up; allow all", "select 1", "Ra01[b]"},
       {"click a; ctrl b", "select a, select b", "R[a]01[b]"},
       {"ctrl a", "", "Ra01[b]"},
       {"right a; menu a; menu", "there, chosen, 32,119, chosen", "Ra01[b]"},
       {"shift 0", "select 0", "Ra[0][1][b]"},
       {"key Shift+Down", "select 1", "Ra0[1][b]"},
       {"click 0; collapse a", "select 0", "Rab"},
       {"click >b", "expand b", "Rab"},
       {"tree b=2; reload b", "", "Rab2"},
       {"tree b=; reload b", "", "Rab"},
       {"tree b=7; reload b; click 7", "select 7", "Rab[7]"}});
  // clang-format on
  whenAsked = [&] { trees['R'].erase(0, 1), view.reloadData(); };
  run({{"click a", "select a", "Rb[7]"}, {"click >b; click >b", "expand b", "R"}});
}

TEST_F(Outline, HoldsItsItemsAndAsksForNoChildrenWhilePainting) {
  run({{"expand a; tree a=0", "", "Ra01b"}});
  const std::weak_ptr<NSObject> gone = items['1'];
  questions = 0;
  run({{"look; click 1", "new, select 1", "Ra0[1]b"}});
  items.erase('1');
  EXPECT_EQ(questions, 0);
  EXPECT_FALSE(gone.expired());
  run({{"reload a", "", "Ra0b"}});
  EXPECT_TRUE(gone.expired());
}

TEST_F(Outline, PaintsItsRowsWhereTheyLie) {
  // A triangle either way, a text or nothing.
  std::vector<QImage> pictures;
  const auto take = [&](const QRect& part) {
    pictures.push_back(area().grab({part.topLeft(), QSize(16, 24)}).toImage());
    EXPECT_EQ(std::count(pictures.begin(), pictures.end(), pictures.back()), 1);
  };
  take(rect(">a"));
  run({{"expand a", "", "Ra01b"}});
  for (const QRect& part : {rect(">a"), rect("a"), rect("0"), QRect(0, 48, 16, 24)})
    take(part);
  EXPECT_TRUE(rect("a").topLeft() == QPoint(32, 24) && rect("0").topLeft() == QPoint(48, 48));
  run({{"look; say Nothing; look", "new, same", "Ra01b"}, {"tree R=; reload; look; say; look", "new, new", "R"}});
  EXPECT_TRUE(toolTipOf(area(), at("R")).contains("R&amp;"));
  EXPECT_EQ(toolTipOf(area(), QPoint(30, area().height() - 2)), QString());
}

}  // namespace tarn::test
