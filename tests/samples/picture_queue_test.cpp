// The order in which the viewer decodes pictures.
#include "samples/viewer/picture_queue.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

using Task = PictureQueue::Task;

class WorkQueue : public testing::Test
{
protected:
    std::vector<Task> TakeAll()
    {
        std::vector<Task> tasks;
        while (const std::optional<Task> task = queue.Take()) {
            tasks.push_back(*task);
        }
        return tasks;
    }

    PictureQueue queue;
};

TEST_F(WorkQueue, TakesThePicturesInViewBeforeThoseAboveThem)
{
    queue.Grow(10);
    for (const std::size_t above : {0U, 1U, 2U}) {
        queue.Want(above);
    }
    EXPECT_EQ(queue.Take(), (Task{2, true}));
    queue.Want(9);
    EXPECT_EQ(queue.Take(), (Task{9, true}));
    EXPECT_EQ(queue.Take(), (Task{1, true}));
    EXPECT_EQ(queue.Take(), (Task{0, true}));
}

TEST_F(WorkQueue, TakesTheFactsOfAllOthersLastAndInTheirOrder)
{
    queue.Grow(2);
    EXPECT_EQ(queue.Take(), (Task{0, false}));
    queue.Grow(5);
    queue.Want(2);
    queue.Want(4);
    EXPECT_EQ(queue.Take(), (Task{4, true}));
    EXPECT_EQ(queue.Take(), (Task{2, true}));
    queue.Finish({2, true});
    queue.Finish({4, true});
    EXPECT_THAT(TakeAll(), ElementsAre(Task{1, false}, Task{3, false}));
    EXPECT_THAT(TakeAll(), IsEmpty());
}

TEST_F(WorkQueue, TakesAPictureOnceForAllRequestsUntilItIsFinished)
{
    queue.Grow(1);
    EXPECT_EQ(queue.Take(), (Task{0, false}));
    EXPECT_TRUE(queue.Want(0));
    queue.Finish({0, false});
    EXPECT_FALSE(queue.Want(0)) << "the request still waits";
    EXPECT_EQ(queue.Take(), (Task{0, true}));
    EXPECT_FALSE(queue.Want(0)) << "it is being decoded";
    EXPECT_EQ(queue.Take(), std::nullopt);
    queue.Finish({0, true});
    EXPECT_TRUE(queue.Want(0));
    EXPECT_EQ(queue.Take(), (Task{0, true}));
}

TEST_F(WorkQueue, DropsTheOldestOfTooManyRequestsWhichCanBeMadeAgain)
{
    constexpr std::size_t kMany = 600;
    queue.Grow(kMany);
    for (std::size_t i = 0; i < kMany; ++i) {
        queue.Want(i);
        queue.Finish({i, false});
    }
    EXPECT_EQ(TakeAll().size(), 512U);
    EXPECT_TRUE(queue.Want(0));
    EXPECT_FALSE(queue.Want(kMany - 1));
}

} // namespace
} // namespace kestraboot::tests
