// Layout functions: the export screen and its filmed picture at real window
// sizes, the rounding of the picture's width, the instrument grid, and the
// bottom panel and adjuster geometry the screens build on.
#include <gtest/gtest.h>

#include <cmath>

#include "export/Framr.h"

namespace {

struct Screen {
    double w, h, inset = 0;
};

class FramrTest : public ::testing::Test {
protected:
    void use(Screen s) { Framr::setScreen(s.w, s.h, s.inset); }
    void TearDown() override { Framr::setScreen(390, 844, 0); }
};

void expectRect(const QRectF& got, double x, double y, double w, double h, const char* what) {
    SCOPED_TRACE(what);
    EXPECT_NEAR(got.x(), x, 1e-6);
    EXPECT_NEAR(got.y(), y, 1e-6);
    EXPECT_NEAR(got.width(), w, 1e-6);
    EXPECT_NEAR(got.height(), h, 1e-6);
}

struct ExportCase {
    const char* what;
    QRectF (*frame)();
    double x, y, w, h;
};

// Expected values worked out by hand from the export screen's table.
TEST_F(FramrTest, ExportScreenFramesOnAPhone) {
    use({390, 844});
    const ExportCase cases[] = {
        {"file icon", Framr::ffExportFileIcon, 85.28, 168.8, 219.44, 219.44},
        {"name of sound", [] { return Framr::ffExportFileNameLabelOfSound(true); }, 78, 388.24, 234, 67.52},
        {"name of item", [] { return Framr::ffExportFileNameLabelOfSound(false); }, 78, 84.4, 234, 67.52},
        {"size", Framr::ffExportFileSizeLabel, 78, 438.88, 234, 42.2},
        {"send", [] { return Framr::ffExportDoneButton(true); }, 110.6, 590.8, 168.8, 168.8},
        {"settings OK", [] { return Framr::ffExportDoneButton(false); }, 131.7, 1477, 126.6, 126.6},
        {"half progress", [] { return Framr::ffExportProgress(0.5); }, 58.5, 658.32, 136.5, 33.76},
        {"result", Framr::ffExportResultLabel, 58.5, 388.24, 273, 67.52},
        {"audio/video row", Framr::ffExportLoopAudioVideo, 58.5, 945.28, 273, 75.96},
        {"photos row", Framr::ffExportLoopAttachPhotos, 58.5, 1157.968, 273, 75.96},
        {"video save row", Framr::ffExportLoopSaveOrSendVideo, 58.5, 1370.656, 273, 75.96},
        {"9:16 picture", [] { return Framr::ffExportLoopAllInstrV(0); }, 91, 195.808, 208, 208 * 16.0 / 9.0},
        {"1:1 picture", [] { return Framr::ffExportLoopAllInstrV(1); }, 19, 195.808, 352, 352},
        {"16:9 picture", [] { return Framr::ffExportLoopAllInstrV(2); }, -5, 261.6725, 400, 225},
        {"sound wave", Framr::ffSoundWave, 39, 135.04, 312, 202},
        {"sound photo", Framr::ffSoundPhotoImage, 78, 183.0, 234, 234},
    };
    for (const auto& c : cases) expectRect(c.frame(), c.x, c.y, c.w, c.h, c.what);
}

TEST_F(FramrTest, ExportScreenFramesOnADesktopWindow) {
    use({1280, 800});
    const ExportCase cases[] = {
        {"file icon", Framr::ffExportFileIcon, 536, 160, 208, 208},
        {"send", [] { return Framr::ffExportDoneButton(true); }, 560, 560, 160, 160},
        {"settings OK", [] { return Framr::ffExportDoneButton(false); }, 580, 1400, 120, 120},
        {"overfull progress", [] { return Framr::ffExportProgress(1.3); }, 192, 624, 896, 32},
        {"format row", Framr::ffExportLoopFormat, 192, 1198.4, 896, 72},
        {"9:16 picture", [] { return Framr::ffExportLoopAllInstrV(0); }, 544, 185.6, 192, 192 * 16.0 / 9.0},
        {"1:1 picture", [] { return Framr::ffExportLoopAllInstrV(1); }, 472, 185.6, 336, 336},
        // 1280 is already a multiple of 16: the gap-limited height stays.
        {"16:9 picture", [] { return Framr::ffExportLoopAllInstrV(2); }, 0, 185.6, 1280, 332.8},
        {"sound photo", Framr::ffSoundPhotoImage, 480, 144, 320, 320},
    };
    for (const auto& c : cases) expectRect(c.frame(), c.x, c.y, c.w, c.h, c.what);
}

TEST_F(FramrTest, WidePictureOnASmallPhoneIsRoundedUpPastTheScreen) {
    use({375, 667});
    const QRectF r = Framr::ffExportLoopAllInstrV(2);
    EXPECT_DOUBLE_EQ(r.width(), 384);
    EXPECT_NEAR(r.height(), 216, 1e-9);
    EXPECT_DOUBLE_EQ(r.x(), -4.5);
}

TEST_F(FramrTest, TallPictureWholeWidthIsAMultipleOf16WithHeight16NinthsOfIt) {
    for (double w : {320.0, 375.0, 390.0, 768.0, 1280.0}) {
        for (double h = 480; h <= 2400; h += 0.5) {
            use({w, h});
            const QRectF r = Framr::ffExportLoopAllInstrV(0);
            ASSERT_EQ(static_cast<int>(r.width()) % 16, 0) << w << " x " << h;
            ASSERT_NEAR(r.height(), r.width() * 16.0 / 9.0, 1e-6) << w << " x " << h;
            ASSERT_NEAR(r.x(), (w - r.width()) / 2.0, 1e-9);
        }
    }
}

TEST_F(FramrTest, SquarePictureTakesTheScreenWidthWhenTheGapIsWider) {
    use({320, 1200});  // 0.8 of the gap is 499 > 320
    const QRectF r = Framr::ffExportLoopAllInstrV(1);
    EXPECT_DOUBLE_EQ(r.width(), 320);
    EXPECT_DOUBLE_EQ(r.height(), 320);
    EXPECT_DOUBLE_EQ(r.x(), 0);
}

TEST_F(FramrTest, ProgressIsClampedAndGrowsFromTheFullBarsLeftEdge) {
    use({390, 844});
    const QRectF full = Framr::ffExportProgress(1.3);
    const QRectF empty = Framr::ffExportProgress(-0.2);
    EXPECT_DOUBLE_EQ(full.width(), 0.7 * 390);
    EXPECT_DOUBLE_EQ(empty.width(), 0);
    EXPECT_DOUBLE_EQ(empty.x(), full.x());
    EXPECT_DOUBLE_EQ(Framr::ffExportProgress(0.25).x(), full.x());
}

TEST_F(FramrTest, LogoIsTheCentredSquareWhateverTheOrigin) {
    expectRect(Framr::ffExportTrackLogoOnAll({7, 9, 200, 300}), 0, 50, 200, 200, "portrait");
    expectRect(Framr::ffExportTrackLogoOnAll({7, 9, 300, 200}), 50, 0, 200, 200, "landscape");
    expectRect(Framr::ffExportTrackLogoOnAll({7, 9, 250, 250}), 0, 0, 250, 250, "square");
}

struct GridCase {
    double w, h;
    int n, ind;
    double x, y, cw, ch;
};

TEST_F(FramrTest, InstrumentGridFollowsOrientationAndCount) {
    EXPECT_TRUE(Framr::ffExportLoopInstrVOnAll({400, 225}, 0, 0).isNull());
    EXPECT_EQ(Framr::ffExportLoopInstrVOnAll({400, 225}, 0, 0), QRectF());
    const GridCase cases[] = {
        // landscape
        {400, 200, 2, 1, 200, 0, 200, 200},
        {400, 200, 4, 3, 200, 100, 200, 100},
        {480, 200, 5, 4, 160, 100, 160, 100},
        {400, 200, 7, 6, 200, 100, 100, 100},
        {400, 200, 8, 3, 300, 0, 100, 100},
        {400, 200, 8, 4, 0, 100, 100, 100},
        // square
        {300, 300, 2, 1, 0, 150, 300, 150},
        {300, 300, 3, 2, 0, 150, 150, 150},
        {300, 300, 6, 5, 150, 200, 150, 100},
        {300, 300, 8, 7, 150, 225, 150, 75},
        // portrait stacks three or four in one column
        {200, 400, 3, 2, 0, 800.0 / 3.0, 200, 400.0 / 3.0},
        {200, 400, 4, 3, 0, 300, 200, 100},
        {200, 400, 5, 3, 100, 400.0 / 3.0, 100, 400.0 / 3.0},
        {200, 400, 8, 6, 0, 300, 100, 100},
    };
    for (const auto& c : cases) {
        const std::string what = std::to_string(c.w) + "x" + std::to_string(c.h) + " n=" + std::to_string(c.n) +
                                 " ind=" + std::to_string(c.ind);
        expectRect(Framr::ffExportLoopInstrVOnAll({c.w, c.h}, c.ind, c.n), c.x, c.y, c.cw, c.ch, what.c_str());
    }
    expectRect(Framr::ffExportPhotoOnInstr({100, 200}), 15, 65, 70, 70, "photo");
}

// The bottom panel and the adjusters at the three window sizes the screens are checked at.
TEST_F(FramrTest, BottomPanelButtonsAndFullScreenCircleFitEveryWindow) {
    for (Screen s : {Screen{390, 844}, Screen{1280, 800}, Screen{320, 568}, Screen{390, 844, 47}}) {
        use(s);
        SCOPED_TRACE(std::to_string(s.w) + "x" + std::to_string(s.h));
        const QRectF panel = Framr::ffBottomPanel();
        EXPECT_DOUBLE_EQ(panel.bottom(), s.h);
        EXPECT_DOUBLE_EQ(Framr::allSpaceAboveBottom().height(), panel.y());
        EXPECT_DOUBLE_EQ(Framr::bottomPanelHei(), Framr::heiForBottomOrTopPanel() + (s.inset > 0 ? s.inset + 20 : 0));
        const QRectF bpm = Framr::ffBpmButton(), pause = Framr::ffPauseButton(), ok = Framr::ffOkButton();
        for (const QRectF& b : {bpm, pause, ok}) {
            EXPECT_GE(b.width(), 44);  // a comfortable touch target
            EXPECT_TRUE(QRectF(0, 0, panel.width(), Framr::heiForBottomOrTopPanel()).contains(b));
        }
        EXPECT_LT(bpm.right(), pause.left());
        EXPECT_LT(pause.right(), ok.left());
        EXPECT_DOUBLE_EQ(pause.center().x(), s.w / 2);
        EXPECT_EQ(Framr::ffBottomButtonAtCol(2, false), ok.translated(0, panel.y()));

        // The circle covers the corners, and a screen rect keeps its place on screen inside it.
        const QRectF circle = Framr::fullScrnCircle();
        EXPECT_NEAR(circle.width() / 2, std::hypot(s.w / 2, s.h / 2), 1e-9);
        EXPECT_EQ(circle.center(), QPointF(s.w / 2, s.h / 2));
        EXPECT_EQ(Framr::tffsrtfsc(Framr::fullScrn()).center(), QPointF(circle.width() / 2, circle.height() / 2));
        EXPECT_EQ(Framr::ffBPMfullScrn().translated(0, panel.y()), circle);
        EXPECT_LE(Framr::aboveNav().bottom(), 0);

        // Enlarged, the adjuster's inner circle is held to half the screen width.
        const QRectF inner = Framr::ffCircleViewOn(circle);
        EXPECT_DOUBLE_EQ(inner.width(), s.w / 2);
        EXPECT_EQ(inner.translated(circle.topLeft()).center(), circle.center());
    }
    use({320, 480});
    EXPECT_TRUE(Framr::isIphone4s());
    use({320, 568});
    EXPECT_FALSE(Framr::isIphone4s());
    use({1280, 800});
    EXPECT_TRUE(Framr::isIpad());
}

TEST_F(FramrTest, IndicatorsFillFromTheBottomAndWalkTheRimByStep) {
    const QRectF circle(10, 10, 100, 100);
    expectRect(Framr::ffIndiktViewOn(circle, 0.25), 10, 85, 100, 25, "quarter");
    expectRect(Framr::ffIndiktViewOn(circle, 1.5), 10, 10, 100, 100, "over full");
    EXPECT_DOUBLE_EQ(Framr::ffIndiktViewOn(circle, -1.0).height(), 0);

    const double dot = Framr::ffIndiktViewOn(circle, uint16_t{0}).width();
    EXPECT_NEAR(Framr::ffIndiktViewOn(circle, uint16_t{0}).center().x(), 60, 1e-9);   // top
    EXPECT_NEAR(Framr::ffIndiktViewOn(circle, uint16_t{0}).top(), 10, 1e-9);
    EXPECT_NEAR(Framr::ffIndiktViewOn(circle, uint16_t{4}).right(), 110, 1e-9);       // right
    EXPECT_NEAR(Framr::ffIndiktViewOn(circle, uint16_t{8}).bottom(), 110, 1e-9);      // bottom
    EXPECT_EQ(Framr::ffIndiktViewOn(circle, uint16_t{16}), Framr::ffIndiktViewOn(circle, uint16_t{0}));
    EXPECT_GT(dot, 0);
}

}  // namespace
