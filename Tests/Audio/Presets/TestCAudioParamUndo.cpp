// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/Presets/CPresetWorld.h"

namespace qrb {
namespace {

TEST(CAudioParamUndo, MovesThroughGesturesInBothDirections)
{
    CPresetWorld world;
    EXPECT_EQ(world.undo.text(), "Undo history start|0");
    world.undo.setPosition(0);
    std::vector<CParamState> states{world.state()};
    world.gesture("one", "gain", 0.25);
    states.push_back(world.state());
    world.gesture("two", "list", 9, 5, 6); // groups and elements that were not there
    states.push_back(world.state());
    world.gesture("three", "keep", 1);
    states.push_back(world.state());
    EXPECT_EQ(world.undo.text(), "Undo history start|one|two|three|3");
    EXPECT_EQ(world.undo.changeCount, 3);
    for (const int position : {0, 3, 2, 1, 3, 0, 2}) {
        world.undo.setPosition(position);
        EXPECT_EQ(world.state(), states[static_cast<std::size_t>(position)]) << position;
        world.params.flushQueue();
        EXPECT_EQ(world.param("gain").audioStorage().value(0, 0), world.number("gain"));
    }
    EXPECT_EQ(world.undo.changeCount, 10);
    for (const int position : {-1, 4, 2})
        world.undo.setPosition(position);
    world.undo.setPosition(3, ENotifyHistory::no);
    EXPECT_EQ(world.undo.changeCount, 10);

    // A new gesture cuts what could have been redone; one without change is no line.
    world.undo.setPosition(1);
    world.gesture("four", "gain", 0.75);
    EXPECT_EQ(world.undo.text(), "Undo history start|one|four|2");
    world.undo.submit(std::make_unique<CAudioParamUndoEntry>("nothing"));
    world.gesture("unseen", "view", 3); // neither preset content nor persistent
    EXPECT_EQ(world.undo.text(), "Undo history start|one|four|2");
}

TEST(CAudioParamUndo, KeepsTheLatestGesturesOnly)
{
    CPresetWorld world;
    for (int i = 1; i <= 33; ++i)
        world.gesture("g", "list", i % 10, 0, i % 3);
    CArray<CString> labels;
    std::int32_t position = 0;
    world.undo.getHistory(labels, position);
    EXPECT_EQ(labels.size(), 33u);
    EXPECT_EQ(position, 32);
    world.undo.setPosition(0);
    EXPECT_EQ(world.number("list", 0, 1), 1.0); // the first gesture stays applied
}

TEST(CAudioParamUndo, GesturesOfOneTagBecomeOneLine)
{
    CPresetWorld world;
    world.gesture("drag", "gain", 0.1, 0, 0, 5);
    world.gesture("drag", "gain", 0.2, 0, 0, 5);
    world.gesture("drag", "gain", 0.3, 0, 0, 5);
    EXPECT_EQ(world.undo.text(), "Undo history start|drag|1");
    EXPECT_EQ(world.undo.changeCount, 1);
    world.undo.setPosition(0);
    EXPECT_EQ(world.number("gain"), 0.5);
    world.undo.setPosition(1);
    EXPECT_EQ(world.number("gain"), 0.3);
    world.gesture("other tag", "gain", 0.4, 0, 0, 6);
    world.gesture("other group", "list", 1, 1, 0, 6);
    world.gesture("longer", "list", 1, 1, 4, 6); // the group's count differs
    EXPECT_EQ(world.undo.text(), "Undo history start|drag|other tag|other group|longer|4");
    // After an undo a step merges into what stands before the position, and what can be redone stays.
    world.undo.setPosition(2);
    world.gesture("other tag", "gain", 0.9, 0, 0, 6);
    EXPECT_EQ(world.undo.text(), "Undo history start|drag|other tag|other group|longer|2");
    world.undo.setPosition(1);
    world.undo.setPosition(2);
    EXPECT_EQ(world.number("gain"), 0.9);
}

TEST(CAudioParamUndo, DefaultElementsComeBackToo)
{
    CPresetWorld world;
    CAudioParam& list = world.param("list");
    CAudioParamUndoEntry entry("template");
    const std::vector<double> values{8, 8};
    CAudioParamUpdate record;
    record.group = kAudioParamTemplateGroup;
    record.elementCount = 2;
    record.isToEnd = true;
    record.format = list.info()->format;
    record.values = values.data();
    const CParamState before = world.state();
    EXPECT_TRUE(list.update(record, {.undo = &entry}));
    EXPECT_EQ(world.number("list", 0, 2), 8.0);
    world.undo.submit(std::make_unique<CAudioParamUndoEntry>(entry));
    world.undo.setPosition(0);
    EXPECT_EQ(world.state(), before);
    EXPECT_EQ(world.number("list", 4, 1), 2.0); // a group that is not there reads as the defaults
    world.undo.setPosition(1);
    EXPECT_EQ(world.number("list", 4, 1), 8.0);
}

} // namespace
} // namespace qrb
