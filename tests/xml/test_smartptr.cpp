#include <gtest/gtest.h>

#include <SmartPtr>

namespace {

using MSXML2::CSmartPtr;
using MSXML2::CSmartPtrAble;

// A counted object that reports its destruction.
class CCounted : public CSmartPtrAble {
  public:
    explicit CCounted(int* destroyed, int value = 0) : m_nValue(value), m_pDestroyed(destroyed) {}
    ~CCounted() override { ++*m_pDestroyed; }
    int Value() const { return m_nValue; }
    int m_nValue;

  private:
    int* m_pDestroyed;
};

// A factory in the style of the DOM wrapper: a new object, wrapped at once.
CSmartPtr<CCounted> MakeCounted(int* destroyed) {
    return CSmartPtr<CCounted>(new CCounted(destroyed));
}

TEST(SmartPtr, NewObjectHasCountZero) {
    int destroyed = 0;
    CCounted* object = new CCounted(&destroyed);
    EXPECT_EQ(object->_smart_ptr_refcount, 0);
    delete object; // count 0: allowed
    EXPECT_EQ(destroyed, 1);
}

TEST(SmartPtr, AddrefAndReleaseCount) {
    int destroyed = 0;
    CCounted object(&destroyed);
    object._smart_ptr_addref();
    object._smart_ptr_addref();
    EXPECT_EQ(object._smart_ptr_refcount, 2);
    EXPECT_EQ(object._smart_ptr_release(), 1);
    EXPECT_EQ(object._smart_ptr_release(), 0);
    EXPECT_EQ(object._smart_ptr_refcount, 0);
    EXPECT_EQ(destroyed, 0); // release never deletes by itself
}

TEST(SmartPtr, HolderFromPointerAddsOneReference) {
    int destroyed = 0;
    CCounted* object = new CCounted(&destroyed, 7);
    {
        CSmartPtr<CCounted> holder(object);
        EXPECT_EQ(object->_smart_ptr_refcount, 1);
        EXPECT_TRUE(holder);
        EXPECT_EQ(holder->Value(), 7);
        EXPECT_EQ(&*holder, object);
        EXPECT_EQ((*holder).Value(), 7);
        holder->m_nValue = 8;
        EXPECT_EQ(object->m_nValue, 8);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(SmartPtr, CopiesShareTheObject) {
    int destroyed = 0;
    CCounted* object = new CCounted(&destroyed);
    CSmartPtr<CCounted> first(object);
    {
        CSmartPtr<CCounted> second(first);
        EXPECT_EQ(object->_smart_ptr_refcount, 2);
        EXPECT_EQ(&*second, object);
        CSmartPtr<CCounted> third;
        third = second;
        EXPECT_EQ(object->_smart_ptr_refcount, 3);
    }
    EXPECT_EQ(object->_smart_ptr_refcount, 1);
    EXPECT_EQ(destroyed, 0);
}

TEST(SmartPtr, LastHolderDeletesThroughTheVirtualDestructor) {
    int destroyed = 0;
    {
        CSmartPtr<CSmartPtrAble> base(new CCounted(&destroyed));
        CSmartPtr<CSmartPtrAble> copy(base);
    }
    // The derived destructor ran, then the base check found the count 0.
    EXPECT_EQ(destroyed, 1);
}

TEST(SmartPtr, NullHolderTouchesNoCounter) {
    int destroyed = 0;
    CCounted* object = new CCounted(&destroyed);
    CSmartPtr<CCounted> keep(object);
    {
        CSmartPtr<CCounted> null;
        CSmartPtr<CCounted> fromNull(nullptr);
        EXPECT_FALSE(null);
        EXPECT_FALSE(fromNull);
        EXPECT_TRUE(!null);
        EXPECT_EQ(null.operator->(), nullptr);
        CSmartPtr<CCounted> copy(null);
        EXPECT_FALSE(copy);
        copy = fromNull;
        EXPECT_FALSE(copy);
        CSmartPtr<CCounted>& sameNull = null;
        null = sameNull;
        EXPECT_FALSE(null);
    }
    EXPECT_EQ(object->_smart_ptr_refcount, 1);
    EXPECT_EQ(destroyed, 0);
}

TEST(SmartPtr, SelfAssignmentKeepsCountAndObject) {
    int destroyed = 0;
    CCounted* object = new CCounted(&destroyed, 3);
    CSmartPtr<CCounted> holder(object);
    CSmartPtr<CCounted>& same = holder;
    holder = same;
    EXPECT_EQ(object->_smart_ptr_refcount, 1);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(holder->Value(), 3);
}

TEST(SmartPtr, AssigningAnotherHolderOfTheSameObject) {
    int destroyed = 0;
    CCounted* object = new CCounted(&destroyed);
    CSmartPtr<CCounted> a(object);
    CSmartPtr<CCounted> b(object);
    EXPECT_EQ(object->_smart_ptr_refcount, 2);
    a = b;
    EXPECT_EQ(object->_smart_ptr_refcount, 2);
    EXPECT_EQ(destroyed, 0);
}

TEST(SmartPtr, AssigningNullOverTheLastHolderDeletes) {
    int destroyed = 0;
    CSmartPtr<CCounted> holder(new CCounted(&destroyed));
    holder = CSmartPtr<CCounted>();
    EXPECT_EQ(destroyed, 1);
    EXPECT_FALSE(holder);
    holder = nullptr; // null over null
    EXPECT_EQ(destroyed, 1);
}

TEST(SmartPtr, AssignmentReleasesTheOldAndAddsTheNew) {
    int destroyedOld = 0;
    int destroyedNew = 0;
    CCounted* incoming = new CCounted(&destroyedNew);
    CSmartPtr<CCounted> source(incoming);
    CSmartPtr<CCounted> target(new CCounted(&destroyedOld));
    CSmartPtr<CCounted> target2(target);
    target = source;
    EXPECT_EQ(destroyedOld, 0); // target2 still holds it
    EXPECT_EQ(incoming->_smart_ptr_refcount, 2);
    target2 = source;
    EXPECT_EQ(destroyedOld, 1);
    EXPECT_EQ(incoming->_smart_ptr_refcount, 3);
    EXPECT_EQ(&*target2, incoming);
}

TEST(SmartPtr, AssignmentFromNullHolderOverObjectSharedElsewhere) {
    int destroyed = 0;
    CCounted* object = new CCounted(&destroyed);
    CSmartPtr<CCounted> a(object);
    CSmartPtr<CCounted> b(a);
    b = CSmartPtr<CCounted>();
    EXPECT_EQ(object->_smart_ptr_refcount, 1);
    EXPECT_EQ(destroyed, 0);
}

TEST(SmartPtr, HolderAssignedFromARawPointer) {
    int destroyed = 0;
    CSmartPtr<CCounted> holder;
    holder = new CCounted(&destroyed);
    EXPECT_EQ(holder->_smart_ptr_refcount, 1);
    holder = new CCounted(&destroyed);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(holder->_smart_ptr_refcount, 1);
}

TEST(SmartPtr, DroppedFactoryResultDeletesItsObject) {
    int destroyed = 0;
    MakeCounted(&destroyed);
    EXPECT_EQ(destroyed, 1);
    CSmartPtr<CCounted> kept = MakeCounted(&destroyed);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(kept->_smart_ptr_refcount, 1);
}

TEST(SmartPtr, TruthTestInConditions) {
    int destroyed = 0;
    CSmartPtr<CCounted> full(new CCounted(&destroyed));
    CSmartPtr<CCounted> empty;
    int taken = 0;
    if (full)
        ++taken;
    if (empty)
        taken += 10;
    EXPECT_EQ(taken, 1);
    EXPECT_TRUE(full && !empty);
}

TEST(SmartPtrDeathTest, ReleaseAtCountZeroAborts) {
    int destroyed = 0;
    EXPECT_DEATH(
        {
            CCounted object(&destroyed);
            object._smart_ptr_release();
        },
        "SmartPtr:[0-9]+: int MSXML2::CSmartPtrAble::_smart_ptr_release\\(\\): Assertion "
        "`_smart_ptr_refcount >= 0' failed\\.");
}

TEST(SmartPtrDeathTest, AddrefAtNegativeCountAborts) {
    int destroyed = 0;
    EXPECT_DEATH(
        {
            CCounted object(&destroyed);
            object._smart_ptr_refcount = -1;
            object._smart_ptr_addref();
        },
        "SmartPtr:[0-9]+: void MSXML2::CSmartPtrAble::_smart_ptr_addref\\(\\): Assertion "
        "`_smart_ptr_refcount >= 0' failed\\.");
}

TEST(SmartPtr, AddrefAtZeroAndReleaseToZeroPass) {
    int destroyed = 0;
    CCounted object(&destroyed);
    object._smart_ptr_addref();
    EXPECT_EQ(object._smart_ptr_release(), 0);
}

TEST(SmartPtrDeathTest, DestroyingWhileHoldersRemainAborts) {
    int destroyed = 0;
    EXPECT_DEATH(
        {
            // The holder itself is never destroyed: the process ends first.
            auto* holder = new CSmartPtr<CCounted>(new CCounted(&destroyed));
            delete &**holder;
        },
        "SmartPtr:[0-9]+: virtual MSXML2::CSmartPtrAble::~CSmartPtrAble\\(\\): Assertion "
        "`_smart_ptr_refcount == 0' failed\\.");
    EXPECT_DEATH(
        {
            CCounted object(&destroyed);
            object._smart_ptr_addref();
        },
        "Assertion `_smart_ptr_refcount == 0' failed");
}

TEST(SmartPtrDeathTest, ExtraReleaseThroughAHolderAborts) {
    int destroyed = 0;
    // A release that nobody owed drops the count to 0 while a holder still
    // points at the object; that holder's own release then fails.
    EXPECT_DEATH(
        {
            CSmartPtr<CCounted> holder(new CCounted(&destroyed));
            holder->_smart_ptr_release();
            holder->_smart_ptr_release();
        },
        "int MSXML2::CSmartPtrAble::_smart_ptr_release\\(\\): Assertion "
        "`_smart_ptr_refcount >= 0' failed");
}

} // namespace
