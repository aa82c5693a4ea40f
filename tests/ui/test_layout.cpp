// The main window's design and its layout rules at the design size and after resizes.
#include <gtest/gtest.h>

#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

#include "hwnd.h"
#include "line.h"
#include "listbox.h"
#include "listview.h"
#include "picturebox.h"
#include "scrollbar.h"
#include "ui_support.h"

namespace {

struct Place {
  int32_t Left, Top, Width, Height;
  bool operator==(const Place&) const = default;
};

Place PlaceOf(const QWidget* c) {
  return {Left(c), Top(c), Width(c), Height(c)};
}

void PrintTo(const Place& p, std::ostream* os) {
  *os << p.Left << ", " << p.Top << ", " << p.Width << ", " << p.Height;
}

// Gives the client area a size in pixels.
void ResizeClient(frmMain& form, int width, int height) {
  form.resize(width, height + form.menuBar()->height());
  QCoreApplication::processEvents();
  ASSERT_EQ(form.Client->size(), QSize(width, height));
}

}  // namespace

TEST(Layout, DesignSizeGivesThePartsTheirFirstPlaces) {
  uitest::StartedForm form;
  EXPECT_EQ(ScaleWidth(form->Client), 9135);
  EXPECT_EQ(ScaleHeight(form->Client), 5775);
  EXPECT_EQ(PlaceOf(form->BGpanel), (Place{0, 975, 3855, 4800}));
  EXPECT_EQ(PlaceOf(form->picSprite), (Place{3855, 975, 5280, 4800}));
  EXPECT_EQ(PlaceOf(form->lvwSprite), (Place{120, 3120, 3615, 1680}));
  EXPECT_EQ(form->Hlin->X1(), 9135);
  // picSprite measures in pixels: 352 x 320 with a border of one pixel.
  EXPECT_EQ(ScaleWidth(form->picSprite), 350);
  EXPECT_EQ(ScaleHeight(form->picSprite), 318);
  EXPECT_EQ(PlaceOf(form->scrSprite), (Place{333, 0, 17, 318}));
  EXPECT_EQ(form->picSprite->Image().size(), QSize(350, 318));
}

TEST(Layout, ControlsStandAtTheirDesignPlacesWithTheirTexts) {
  uitest::StartedForm form;
  EXPECT_EQ(PlaceOf(form->Grid), (Place{3960, 3960, 3660, 1755}));
  EXPECT_FALSE(form->Grid->isVisible());
  EXPECT_EQ(PlaceOf(form->Li), (Place{120, 1560, 3615, 1425}));
  EXPECT_EQ(PlaceOf(form->Frame), (Place{120, 120, 3615, 1095}));
  EXPECT_EQ(PlaceOf(form->lblT), (Place{120, 1320, 3615, 255}));
  EXPECT_EQ(Caption(form->Frame), "Sprite:");
  EXPECT_EQ(Caption(form->lblT), "Messages:");
  struct Expected {
    QLabel* Label;
    Place At;
    const char* Text;
    bool Right;
  };
  const Expected labels[] = {
      {form->Label2, {120, 360, 495, 255}, "Flags:", false},
      {form->lblFlags, {600, 360, 1215, 255}, "-", true},
      {form->Label5, {1920, 360, 615, 255}, "Offset:", false},
      {form->lblOffset, {2520, 360, 975, 255}, "-", true},
      {form->Label3, {120, 720, 495, 255}, "Size:", false},
      {form->lblSize, {600, 720, 1215, 255}, "-", true},
      {form->Label4, {1920, 720, 975, 255}, "Compressed:", false},
      {form->lblCompressed, {2880, 720, 615, 255}, "-", true},
  };
  for (const Expected& e : labels) {
    SCOPED_TRACE(e.Text);
    EXPECT_EQ(e.Label->parentWidget(), form->Frame);
    EXPECT_EQ(PlaceOf(e.Label), e.At);
    EXPECT_EQ(Caption(e.Label), e.Text);
    EXPECT_EQ((e.Label->alignment() & Qt::AlignRight) != 0, e.Right);
  }
  EXPECT_EQ(Caption(form->lblStatus), "No file loaded");
  EXPECT_EQ(Left(form->lblStatus), 4440);
  EXPECT_EQ(Top(form->lblStatus), 120);
  EXPECT_EQ(form->lblStatus->size(), form->lblStatus->sizeHint());  // sized to its text
  EXPECT_TRUE(form->lblStatus->font().bold());
  EXPECT_EQ(form->Hlin->Y1(), 960);
  EXPECT_EQ(form->Hlin->X2(), -15);
  EXPECT_EQ(form->Hlin->Y2(), 960);
  // Containers.
  EXPECT_EQ(form->lvwSprite->parentWidget(), form->BGpanel);
  EXPECT_EQ(form->Li->parentWidget(), form->BGpanel);
  EXPECT_EQ(form->scrSprite->parentWidget(), form->picSprite);
  EXPECT_EQ(form->scrSprite->orientation(), Qt::Vertical);
  EXPECT_EQ(form->scrSprite->Max(), 0);
  EXPECT_EQ(form->scrSprite->focusPolicy(), Qt::ClickFocus);
}

TEST(Layout, TabVisitsThePanelTheMessagesThePictureAndTheList) {
  uitest::StartedForm form;
  form->show();
  QApplication::setActiveWindow(form.Form.get());
  form->BGpanel->setFocus(Qt::TabFocusReason);
  std::vector<QWidget*> visited;
  for (int i = 0; i < 5; ++i) {
    visited.push_back(QApplication::focusWidget());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(visited, (std::vector<QWidget*>{form->BGpanel, form->Li, form->picSprite,
                                            form->lvwSprite, form->BGpanel}));
}

TEST(Layout, FontsColoursAndPictures) {
  uitest::StartedForm form;
  EXPECT_EQ(Caption(form.Form.get()), "Vossel (GRF loader engine)");
  for (const QWidget* w :
       {static_cast<const QWidget*>(form.Form.get()), static_cast<const QWidget*>(form->lblT),
        static_cast<const QWidget*>(form->lvwSprite)}) {
    EXPECT_DOUBLE_EQ(w->font().pointSizeF(), 8.25);
    EXPECT_EQ(w->font().families().front(), "Tahoma");
  }
  for (const QWidget* w :
       {static_cast<const QWidget*>(form->Frame), static_cast<const QWidget*>(form->lblFlags),
        static_cast<const QWidget*>(form->Li), static_cast<const QWidget*>(form->picSprite)})
    EXPECT_EQ(w->font().families().front(), "MS Sans Serif");
  EXPECT_EQ(form->Client->BackColor(), 0x00DECCCDu);
  EXPECT_EQ(form->picSprite->BackColor(), 0x00FFFFFFu);
  EXPECT_EQ(form->BGpanel->BackColor(), ButtonFaceColour());
  // The banner at the top left corner, unstretched, on the window's colour.
  const QImage banner(":/banner.png");
  ASSERT_EQ(banner.size(), QSize(300, 65));
  EXPECT_EQ(form->Client->Image().pixelColor(5, 5), banner.pixelColor(5, 5));
  EXPECT_EQ(form->Client->Image().pixelColor(299, 30), banner.pixelColor(299, 30));
  EXPECT_EQ(form->Client->Image().pixelColor(300, 30), QColor(205, 204, 222));
  // Hlin in the button shadow colour along the banner's lower edge.
  const QImage shown = form->Client->grab().toImage();
  EXPECT_EQ(shown.pixelColor(500, 64), ColourOfBgr(ButtonShadowColour()));
  EXPECT_EQ(shown.pixelColor(500, 63), QColor(205, 204, 222));
  EXPECT_EQ(QImage(":/grid.png").size(), QSize(244, 117));
  EXPECT_EQ(form->Grid->Image().pixelColor(0, 0), QImage(":/grid.png").pixelColor(0, 0));
  const QList<QSize> icons = form->windowIcon().availableSizes();
  for (int size : {16, 32, 48}) EXPECT_TRUE(icons.contains(QSize(size, size))) << size;
  EXPECT_NE(form->hWnd(), 0);
  EXPECT_EQ(WindowOfHandle(form->property("hWnd").toInt()), form.Form.get());
}

TEST(Layout, SpriteListHasItsColumns) {
  uitest::StartedForm form;
  const char* names[] = {"#", "Width", "Height", "Size", "Flags"};
  const int widths[] = {32, 40, 43, 43, 63};
  ASSERT_EQ(form->lvwSprite->ColumnCount(), 5);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(form->lvwSprite->Column(i + 1).Text, names[i]);
    EXPECT_EQ(form->lvwSprite->header()->sectionSize(i), widths[i]);
  }
  EXPECT_EQ(form->lvwSprite->ItemCount(), 0);
  EXPECT_EQ(form->lvwSprite->SortKey, 0);
  EXPECT_EQ(form->lvwSprite->SortOrder, 0);
  EXPECT_FALSE(form->lvwSprite->Sorted());
}

TEST(Layout, MenusHaveTheirItemsShortcutsAndStates) {
  uitest::StartedForm form;
  const QList<QAction*> bar = form->menuBar()->actions();
  ASSERT_EQ(bar.size(), 4);
  EXPECT_EQ(bar[0]->text(), "&File");
  EXPECT_EQ(bar[1]->text(), "&View");
  EXPECT_EQ(bar[2]->text(), "&Tools");
  EXPECT_EQ(bar[3]->text(), "&Help");
  struct Item {
    QAction* Action;
    const char* Text;
    QKeySequence Shortcut;
    bool Enabled;
  };
  const Item items[] = {
      {form->mnuNew, "&New", QKeySequence("Ctrl+N"), true},
      {form->mnuOpen, "&Open...", QKeySequence("Ctrl+O"), true},
      {form->mnuSave, "&Save", QKeySequence("Ctrl+S"), false},
      {form->mnuSaveAs, "Save &As...", QKeySequence("F12"), false},
      {form->mnuQuit, "&Quit", QKeySequence(), true},
      {form->mnuViewGrid, "&Grid", QKeySequence("Shift+F1"), true},
      {form->mnuChunk, "&Chunk Viewer", QKeySequence(), true},
      {form->mnuAbout, "&About Vossel", QKeySequence(), true},
  };
  for (const Item& i : items) {
    SCOPED_TRACE(i.Text);
    EXPECT_EQ(i.Action->text(), i.Text);
    EXPECT_EQ(i.Action->shortcut(), i.Shortcut);
    EXPECT_EQ(i.Action->isEnabled(), i.Enabled);
  }
  const QList<QAction*> file = form->mnuFile->actions();
  ASSERT_EQ(file.size(), 6);
  EXPECT_EQ(file[0], form->mnuNew);
  EXPECT_EQ(file[3], form->mnuSaveAs);
  EXPECT_TRUE(file[4]->isSeparator());
  EXPECT_EQ(file[4], form->mnuLine1);
  EXPECT_EQ(file[5], form->mnuQuit);
  EXPECT_EQ(form->mnuView->actions().front(), form->mnuViewGrid);
  EXPECT_EQ(form->mnuTools->actions(), QList<QAction*>{form->mnuChunk});
  EXPECT_EQ(form->mnuHelp->actions(), QList<QAction*>{form->mnuAbout});
}

TEST(Layout, ResizesFollowTheWindowAndSkipMovesThatWouldTurnNegative) {
  uitest::StartedForm form;
  std::vector<uitest::Shown>& boxes = form.Boxes.Boxes;
  boxes.clear();
  ResizeClient(*form, 800, 600);
  EXPECT_EQ(PlaceOf(form->BGpanel), (Place{0, 975, 3855, 8025}));
  EXPECT_EQ(PlaceOf(form->picSprite), (Place{3855, 975, 8145, 8025}));
  EXPECT_EQ(Height(form->lvwSprite), 8025 - 3120);
  EXPECT_EQ(form->Hlin->X1(), 12000);
  EXPECT_EQ(PlaceOf(form->scrSprite), (Place{541 - 17, 0, 17, 533}));
  // Narrower than the panel: picSprite keeps its last place and size, the panel its width.
  ResizeClient(*form, 200, 500);
  EXPECT_EQ(PlaceOf(form->BGpanel), (Place{0, 975, 3855, 6525}));
  EXPECT_EQ(PlaceOf(form->picSprite), (Place{3855, 975, 8145, 8025}));
  // Lower than the banner: both keep their last sizes.
  ResizeClient(*form, 700, 40);
  EXPECT_EQ(PlaceOf(form->BGpanel), (Place{0, 975, 3855, 6525}));
  EXPECT_EQ(PlaceOf(form->picSprite), (Place{3855, 975, 8145, 8025}));
  EXPECT_EQ(Height(form->lvwSprite), 6525 - 3120);
  // Exactly as low as the lower part's top: heights of 0 are no failure.
  ResizeClient(*form, 700, 65);
  EXPECT_EQ(PlaceOf(form->BGpanel), (Place{0, 975, 3855, 0}));
  EXPECT_EQ(PlaceOf(form->picSprite), (Place{3855, 975, 6645, 0}));
  EXPECT_EQ(Height(form->lvwSprite), 6525 - 3120);  // a negative height is skipped
  ResizeClient(*form, 609, 385);
  EXPECT_EQ(PlaceOf(form->picSprite), (Place{3855, 975, 5280, 4800}));
  EXPECT_EQ(Height(form->lvwSprite), 1680);
  EXPECT_TRUE(boxes.empty());
  // With no file the picture area stays white.
  const QImage& image = form->picSprite->Image();
  for (int y = 0; y < image.height(); y += 7)
    for (int x = 0; x < image.width(); x += 7) ASSERT_EQ(image.pixel(x, y), qRgb(255, 255, 255));
}

TEST(Layout, AWidthChangeAloneDoesNotResizeThePanel) {
  uitest::StartedForm form;
  int panelResizes = 0;
  const auto panelResize = form->BGpanel->Resize;
  form->BGpanel->Resize = [&] {
    ++panelResizes;
    panelResize();
  };
  ResizeClient(*form, 700, 385);
  EXPECT_EQ(panelResizes, 0);
  ResizeClient(*form, 700, 400);
  EXPECT_EQ(panelResizes, 1);
}
