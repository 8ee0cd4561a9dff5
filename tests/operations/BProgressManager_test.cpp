#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/BProgressManager.h>

namespace {
class StopAfter : public BProgressManager {
public:
    explicit StopAfter(int questions) : m_questions(questions) {}
    void BeginLongOperation(WString const&) override {}
    void EndLongOperation() override {}
    bool BreakLongOperation(bool) override { return --m_questions < 0; }
    void TestUserBreak() override {
        if (BreakLongOperation(false))
            throw BError(1);
    }

private:
    int m_questions;
};
} // namespace

// Without a manager loops cannot be stopped; with one, its answers come through, and the
// slot keeps exactly one reference, also when the registered object is registered again.
TEST(BProgressManager, AnswersOnlyThroughTheRegisteredManager) {
    EXPECT_EQ(BProgressManager::Instance(), nullptr);
    EXPECT_FALSE(BProgressManager::InstanceBreakLongOperation(false));
    EXPECT_NO_THROW(BProgressManager::InstanceTestUserBreak());

    auto* manager = new StopAfter(1);
    BProgressManager::RegisterInstance(manager);
    BProgressManager::RegisterInstance(BProgressManager::Instance());
    EXPECT_EQ(manager->RefCount(), 1);
    EXPECT_FALSE(BProgressManager::InstanceBreakLongOperation(false));
    EXPECT_THROW(BProgressManager::InstanceTestUserBreak(), BError);

    BProgressManager::RegisterInstance(nullptr);
    EXPECT_EQ(BProgressManager::Instance(), nullptr);
    EXPECT_FALSE(BProgressManager::InstanceBreakLongOperation(false));
}
