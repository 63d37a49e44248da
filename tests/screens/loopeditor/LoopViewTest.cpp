// The small loop view: tiles per instrument in their sounds' colours, photos
// on demand, and the darker shade where a tile matches its background.
#include <fstream>

#include "screens/kit/KitColorer.h"
#include "screens/loopeditor/LoopView.h"
#include "tests/screens/loopeditor/LoopEditorFixture.h"

namespace {

class LoopViewTest : public LoopEditorFixture {};

TEST_F(LoopViewTest, TilesFollowTheLoopTheirPhotosAndClashingColours) {
    Loop* loop = builtIn({{"S1", "1---------------", 100}, {"S2", "----------------", 100}, {"S3", "1---", 100}});
    CoreDater& d = CoreDater::shIns();
    d.findSoundWithName("S1")->setColor(5);
    d.findSoundWithName("S2")->setColor(40);
    d.findSoundWithName("S3")->setColor(5);
    std::ofstream(Filer::pathToJpgFileForSound(d.findSoundWithName("S2"))) << "jpg";

    LoopView view;
    view.setLoopName(QString::fromStdString(loop->name()));
    ASSERT_EQ(view.count(), 3);
    EXPECT_EQ(view.colors()[1], KitColorer::colorForNumber(40));
    EXPECT_EQ(view.photoSources(), (QStringList{"", "", ""})) << "photos only on demand";

    view.refreshAllPhotos(true);
    EXPECT_TRUE(view.photoSources()[0].isEmpty()) << "no photo file";
    EXPECT_TRUE(view.photoSources()[1].endsWith(".jpg"));
    view.refreshAllPhotos(false);
    EXPECT_TRUE(view.photoSources()[1].isEmpty());

    view.changeInstrColorToDarkerIfSameAs(5);
    const QColor five = KitColorer::colorForNumber(5);
    for (int i : {0, 2}) {
        EXPECT_NEAR(view.colors()[i].redF(), std::max(0.0, five.redF() - 0.03), 0.005);
        EXPECT_NEAR(view.colors()[i].blueF(), std::max(0.0, five.blueF() - 0.03), 0.005);
    }
    EXPECT_EQ(view.colors()[1], KitColorer::colorForNumber(40));

    Loop* other = builtIn({{"S2", "1---------------", 100}});
    view.changeInstrumentsForNewLoop(other);
    EXPECT_EQ(view.count(), 1);
    EXPECT_EQ(view.colors()[0], KitColorer::colorForNumber(40));
}

TEST_F(LoopViewTest, SoundingTilesFollowTheNoteReportsAndRestWithANewLoop) {
    Loop* three = builtIn({{"S1", "1---", 100}, {"S2", "1---", 100}, {"S3", "1---", 100}});
    LoopView view;
    view.changeInstrumentsForNewLoop(three);
    EXPECT_EQ(view.sounding(), 0);
    view.setTileSounding(2, true);
    view.setTileSounding(7, true);  // no tile there
    view.setTileSounding(-1, true);
    EXPECT_EQ(view.sounding(), 0b100);
    view.setTileSounding(0, true);
    view.setTileSounding(2, false);
    EXPECT_EQ(view.sounding(), 0b001);

    view.changeInstrumentsForNewLoop(builtIn({{"S1", "1---", 100}}));
    EXPECT_EQ(view.sounding(), 0);
    view.setTileSounding(0, true);
    view.stopAllSounding();
    EXPECT_EQ(view.sounding(), 0);
}

}  // namespace
