// Listeners_test.cpp -- who wants to know, and those who leave while they are told
#include "platform/Listeners.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

struct Guest;
using GuestList = Listeners<void(i32)>;

struct Guest {
    GuestList *pList;
    std::string *psLog;
    char cName;
    Guest *pThrowsOut = nullptr; // removed when this one is told; may be this one
    Guest *pBrings = nullptr;    // added then
    i32 nTellsAgain = 0;

    static void Hear(i32 n, void *pv)
    {
        auto *p = static_cast<Guest *>(pv);
        *p->psLog += p->cName + std::to_string(n) + ' ';
        if (p->pThrowsOut)
            p->pList->Remove(Hear, p->pThrowsOut);
        if (p->pBrings)
            p->pList->Add(Hear, std::exchange(p->pBrings, nullptr));
        if (p->nTellsAgain-- > 0)
            p->pList->Tell(n + 1);
    }
};

class ListenersTest : public testing::Test {
  protected:
    std::string Tell(i32 n)
    {
        sLog.clear();
        List.Tell(n);
        return sLog;
    }

    void AddAll()
    {
        for (Guest *p : {&a, &b, &c})
            List.Add(Guest::Hear, p);
    }

    GuestList List;
    std::string sLog;
    Guest a{&List, &sLog, 'a'}, b{&List, &sLog, 'b'}, c{&List, &sLog, 'c'};
};

TEST_F(ListenersTest, WhoRemovesItselfDoesNotMakeTheNextOneMissTheNews)
{
    AddAll();
    b.pThrowsOut = &b;
    EXPECT_EQ(Tell(1), "a1 b1 c1 ");
    EXPECT_EQ(Tell(2), "a2 c2 ");
}

TEST_F(ListenersTest, WhoIsRemovedByAnotherIsToldNoMore)
{
    AddAll();
    a.pThrowsOut = &b;
    c.pThrowsOut = &a;
    EXPECT_EQ(Tell(1), "a1 c1 ");
    EXPECT_EQ(Tell(2), "c2 ");
}

TEST_F(ListenersTest, WhoComesWhileTheyAreToldHearsTheNextNews)
{
    List.Add(Guest::Hear, &a);
    a.pBrings = &b;
    EXPECT_EQ(Tell(1), "a1 ");
    EXPECT_EQ(Tell(2), "a2 b2 ");
}

TEST_F(ListenersTest, ARemovalDuringNewsWithinNewsHoldsForBoth)
{
    AddAll();
    a.nTellsAgain = 1;
    b.pThrowsOut = &c;
    EXPECT_EQ(Tell(1), "a1 a2 b2 b1 ");
    EXPECT_EQ(Tell(5), "a5 b5 ");
    for (Guest *p : {&a, &b})
        List.Remove(Guest::Hear, p);
    EXPECT_TRUE(List.IsEmpty());
    EXPECT_EQ(Tell(6), "");
}

TEST(ListenerResults, AreJoined)
{
    Listeners<u32()> list;
    EXPECT_EQ(list.Tell(), 0u);
    list.Add([](void *) { return 4u; });
    list.Add([](void *) { return 1u; });
    EXPECT_EQ(list.Tell(), 5u);
}

} // namespace
