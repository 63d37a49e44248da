// Relationship bookkeeping: both sides always agree, and deleting an object
// only takes it out of its inverses.
#include "tests/library/TestStore.h"

using ModelTest = StoreTest;

TEST_F(ModelTest, SettingEitherSideOfAnOrderedRelationshipUpdatesTheOther) {
    auto* a = store->insert<Loop>();
    auto* b = store->insert<Loop>();
    auto* i1 = store->insert<Instrument>();
    auto* i2 = store->insert<Instrument>();
    auto* i3 = store->insert<Instrument>();
    i1->setInLoop(a);
    i2->setInLoop(a);
    a->setInstruments({i3, i1, i2});
    EXPECT_EQ(a->instruments(), (std::vector<Instrument*>{i3, i1, i2}));
    EXPECT_EQ(i3->inLoop(), a);

    // Moving a row to another loop takes it out of the first one, keeping the rest in order.
    b->setInstruments({i1});
    EXPECT_EQ(a->instruments(), (std::vector<Instrument*>{i3, i2}));
    EXPECT_EQ(i1->inLoop(), b);
    i2->setInLoop(b);
    EXPECT_EQ(a->instruments(), (std::vector<Instrument*>{i3}));
    EXPECT_EQ(b->instruments(), (std::vector<Instrument*>{i1, i2}));

    // Replacing the list releases the members left out.
    b->setInstruments({i2});
    EXPECT_EQ(i1->inLoop(), nullptr);
}

TEST_F(ModelTest, SharedReferencesKeepUnorderedInverses) {
    auto* kick = store->insert<Sound>();
    auto* snare = store->insert<Sound>();
    auto* i1 = store->insert<Instrument>();
    auto* i2 = store->insert<Instrument>();
    i1->setSound(kick);
    i2->setSound(kick);
    EXPECT_EQ(kick->toInstruments().size(), 2u);
    i1->setSound(snare);
    EXPECT_EQ(kick->toInstruments(), (std::vector<Instrument*>{i2}));
    EXPECT_EQ(snare->toInstruments(), (std::vector<Instrument*>{i1}));
}

TEST_F(ModelTest, DeletingLeavesInversesAndDeletesNothingElse) {
    auto* folder = store->insert<SoundFolder>();
    auto* sound = store->insert<Sound>();
    auto* other = store->insert<Sound>();
    sound->setInFolder(folder);
    other->setInFolder(folder);
    auto* loop = store->insert<Loop>();
    auto* inst = store->insert<Instrument>();
    inst->setSound(sound);
    inst->setInLoop(loop);

    store->deleteObject(sound);
    EXPECT_TRUE(sound->isDeleted());
    EXPECT_EQ(folder->items(), (std::vector<Sound*>{other}));
    EXPECT_EQ(inst->sound(), nullptr);
    EXPECT_FALSE(inst->isDeleted());
    EXPECT_EQ(loop->instruments(), (std::vector<Instrument*>{inst}));

    store->deleteObject(loop);
    EXPECT_EQ(inst->inLoop(), nullptr);
    EXPECT_FALSE(inst->isDeleted());
    EXPECT_EQ(store->objects(Entity::Loop).size(), 0u);
}

TEST_F(ModelTest, MasksKeepTheirSixteenBitsThroughTheSignedAttribute) {
    auto* inst = store->insert<Instrument>();
    inst->setTactsMask(0x80A0);
    EXPECT_LT(inst->tacts(), 0);
    EXPECT_EQ(inst->tactsMask(), 0x80A0);
    auto* block = store->insert<LoopSquares>();
    block->setSquaresMask(0xFFFF);
    EXPECT_EQ(block->squares(), -1);
    ASSERT_TRUE(store->save());
    reopen();
    auto insts = store->all<Instrument>();
    ASSERT_EQ(insts.size(), 1u);
    EXPECT_EQ(insts[0]->tactsMask(), 0x80A0);
    EXPECT_EQ(store->all<LoopSquares>()[0]->squaresMask(), 0xFFFF);
}
