#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/core/BSmartObj.h>
#include <string>

namespace {

// Counts destructions of each class, so that tests can see who ran.
struct Probe : BSmartObj {
    QV_DECLARE_CLASSNAME(Probe)
    static inline int destroyed = 0;
    ~Probe() override { ++destroyed; }
};
QV_REGISTER_CLASSNAME(Probe);

struct Derived : Probe {
    QV_DECLARE_CLASSNAME(Derived)
    static inline int destroyed = 0;
    ~Derived() override { ++destroyed; }
};
QV_REGISTER_CLASSNAME(Derived);

// BSmartObj as a virtual base, as attributes use it.
struct Mixin : virtual BSmartObj {};
struct Attribute : virtual BSmartObj {};
struct Both : Attribute, Mixin {
    QV_DECLARE_CLASSNAME(Both)
};
QV_REGISTER_CLASSNAME(Both);

struct Unregistered : BSmartObj {};

struct Throwing : BSmartObj {
    bool VerifyObj() override { throw 42; }
};
struct Unsound : BSmartObj {
    bool VerifyObj() override { return false; }
};

} // namespace

TEST(BSmartObj, CopiesAreNewObjectsAndAssignmentKeepsIdentity) {
    SP<BSmartObj> owner = new BSmartObj;
    BSmartObj copy(*owner);
    EXPECT_EQ(copy.RefCount(), 0);
    EXPECT_EQ(copy.UniqueID(), owner->UniqueID() + 1) << "numbers ascend";
    EXPECT_EQ(BSmartObjBase::LastUniqueID(), copy.UniqueID());
    long const id = owner->UniqueID();
    *owner = copy;
    EXPECT_EQ(owner->UniqueID(), id) << "assignment copies neither count nor number";
    EXPECT_EQ(owner->RefCount(), 1);
}

TEST(SP, OwnsAndDestroysThroughTheBase) {
    Probe::destroyed = Derived::destroyed = 0;
    SP<BSmartObj> p = new Derived;
    SP<BSmartObj>& same = p;
    p = same; // assigning its own pointer keeps it alive
    p = static_cast<BSmartObj*>(p);
    EXPECT_EQ(p->RefCount(), 1);
    EXPECT_EQ(Probe::destroyed, 0);
    p = nullptr;
    EXPECT_EQ(Probe::destroyed + Derived::destroyed, 2) << "both destructors ran";
}

TEST(SP, AssigningAnObjectOwnedByTheOldOneIsSafe) {
    struct Holder : BSmartObj {
        SP<BSmartObj> inner;
    };
    Probe::destroyed = 0;
    SP<Holder> outer = new Holder;
    outer->inner = new Probe;
    SP<BSmartObj> p = outer.get();
    outer = nullptr;
    p = static_cast<Holder*>(p.get())->inner; // the holder dies only after inner is counted
    EXPECT_EQ(Probe::destroyed, 0);
    EXPECT_EQ(p->RefCount(), 1);
}

TEST(SP, CheckedConversionTakesItsOwnReference) {
    SP<BSmartObj> base = new Derived;
    SP<Probe> probe = base;
    ASSERT_TRUE(probe);
    EXPECT_EQ(base->RefCount(), 2);
    EXPECT_FALSE(SP<BError>(base)) << "not an error: null";
    // Through a virtual base, and sideways through the dynamic type: still one count.
    SP<Both> both = new Both;
    SP<Attribute> attribute = both;
    SP<Mixin> cross = attribute;
    EXPECT_TRUE(cross);
    EXPECT_EQ(both->RefCount(), 3);
}

TEST(SP, MovesAcrossTypesWithoutCountingAndCountsAFirstOwner) {
    Probe::destroyed = 0;
    SP<BSmartObj> base = SP<BSmartObj>::FirstOwner(new Derived);
    EXPECT_EQ(base->RefCount(), 1);
    SP<Probe> down = std::move(base);
    EXPECT_FALSE(base);
    EXPECT_EQ(down->RefCount(), 1) << "the reference moved along";
    SP<BError> wrong = std::move(down);
    EXPECT_FALSE(wrong);
    ASSERT_TRUE(down) << "an object of another type stays with the source";
    SP<BSmartObj> up = std::move(down);
    EXPECT_EQ(up->RefCount(), 1);
    up = nullptr;
    EXPECT_EQ(Probe::destroyed, 1);
    EXPECT_FALSE(SP<Probe>::FirstOwner(nullptr));
}

TEST(BSmartObj, NamesIdsAndValidity) {
    SP<BSmartObj> p = new Derived, both = new Both;
    Unregistered loose;
    EXPECT_EQ(std::string(p->ClassName()) + "|" + p->ArchiveName() + "|" + both->ClassName() + "|" +
                  loose.ClassName(),
              "class Derived|class Derived|class Both|class (anonymous namespace)::Unregistered")
        << "an unregistered class still gets the stored form";
    EXPECT_EQ(std::string(BSmartObj::Id(~0ull).CStr()), "ffffffffffffffff");
    EXPECT_EQ(loose.Id(), BSmartObj::Id(static_cast<void*>(&loose)));

    Unsound unsound;
    Throwing throwing;
    EXPECT_TRUE(BSmartObj::IsValidObject(&unsound)) << "the call came back, whatever it said";
    EXPECT_FALSE(BSmartObj::IsValidObject(&throwing));
    EXPECT_FALSE(BSmartObj::IsValidObject(nullptr));
}
