// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdateQueue.h"
#include "Tests/Audio/AudioParamWorld.h"

namespace qrb {
namespace {

/// The queue of a parameter's records, printed as "group:first+count values" with "!" for an end of the group.
class Queue {
public:
    Queue& add(int group, int first, std::vector<double> values, bool isToEnd = false)
    {
        CAudioParamUpdateRecord* const record = make(group, first, std::move(values), isToEnd);
        delete queue.appendMerged(record);
        return *this;
    }
    CAudioParamUpdateRecord* make(int group, int first, std::vector<double> values, bool isToEnd)
    {
        auto* const record = new CAudioParamUpdateRecord;
        record->set(nullptr, &anchor, AudioParamRecord({}, group, first, std::move(values), isToEnd).update);
        return record;
    }
    std::string print()
    {
        std::string text;
        CAudioParamUpdateList list;
        queue.moveTo(list);
        while (CAudioParamUpdateRecord* const record = list.takeFirst()) {
            text += (text.empty() ? "" : " ") + std::to_string(record->update().group) + ":" +
                    std::to_string(record->update().firstElement);
            for (const double value : record->update().cells())
                text += "," + std::to_string(static_cast<int>(value));
            text += record->update().isToEnd ? "!" : "";
            delete record;
        }
        return text;
    }

    CAudioParamQueueAnchor anchor;
    CAudioParamUpdateQueue queue;
};

TEST(CAudioParamUpdateQueue, MergesRangesThatTouch)
{
    EXPECT_EQ(Queue().add(1, 0, {1, 2}).add(1, 1, {7, 8}).print(), "1:0,1,7,8");
    EXPECT_EQ(Queue().add(1, 2, {1}).add(1, 0, {7, 8}).print(), "1:0,7,8,1");
    EXPECT_EQ(Queue().add(1, 2, {1}).add(1, 0, {7}).print(), "1:2,1 1:0,7");
    EXPECT_EQ(Queue().add(1, 0, {1}).add(2, 0, {2}).add(1, 0, {3}).print(), "1:0,3 2:0,2");
    // A template in between has the older change behind it.
    EXPECT_EQ(Queue().add(0, 0, {1}).add(9999, 0, {5}).add(0, 0, {2}).print(), "0:0,1 9999:0,5 0:0,2");
    EXPECT_EQ(Queue().add(9999, 0, {5}).add(9999, 0, {6}).print(), "9999:0,5 9999:0,6");
    // Ends of the group.
    EXPECT_EQ(Queue().add(0, 0, {1, 2, 3}).add(0, 1, {9}, true).print(), "0:0,1,9!");
    EXPECT_EQ(Queue().add(0, 0, {1, 2}, true).add(0, 2, {9}).print(), "0:0,1,2,9!");
    EXPECT_EQ(Queue().add(0, 0, {1, 2, 3}).add(0, 0, {}, true).print(), "0:0!");
    // A range apart may be passed over, unless an end is set.
    EXPECT_EQ(Queue().add(0, 0, {1}).add(0, 5, {2}).add(0, 0, {3}).print(), "0:0,3 0:5,2");
    EXPECT_EQ(Queue().add(0, 0, {1}).add(0, 5, {2}, true).add(0, 0, {3}).print(), "0:0,1 0:5,2! 0:0,3");
}

TEST(CAudioParamUpdateQueue, ASplicedRecordReplacesWhatItLeavesNothingOf)
{
    const auto splice = [](Queue& queue, int group, int first, std::vector<double> values, bool isToEnd) {
        CAudioParamUpdateList list;
        CAudioParamUpdateList dropped;
        list.append(queue.make(group, first, std::move(values), isToEnd));
        queue.queue.splice(list, &dropped);
        return queue.print();
    };
    Queue queue;
    EXPECT_EQ(splice(queue.add(0, 0, {1}).add(1, 0, {2}).add(0, 4, {3}), 0, 0, {8, 9}, true), "1:0,2 0:0,8,9!");
    EXPECT_EQ(splice(queue.add(9999, 0, {1}).add(0, 0, {2}).add(1, 0, {3}), 9999, 0, {8}, true), "1:0,3 9999:0,8!");
    EXPECT_EQ(splice(queue.add(0, 0, {1, 2}), 0, 1, {8}, false), "0:0,1,2 0:1,8");
    EXPECT_EQ(splice(queue.add(9999, 0, {1}), 0, 0, {8}, true), "9999:0,1 0:0,8!");
}

} // namespace
} // namespace qrb
