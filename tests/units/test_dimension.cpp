#include <gtest/gtest.h>

#include "units/KVdim.h"

namespace {

void ExpectPowers(const CKVdimension& d, double l, double m, double t, double k, double i, double n,
                  double j) {
    double p[7];
    d.GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
    EXPECT_EQ(p[0], l);
    EXPECT_EQ(p[1], m);
    EXPECT_EQ(p[2], t);
    EXPECT_EQ(p[3], k);
    EXPECT_EQ(p[4], i);
    EXPECT_EQ(p[5], n);
    EXPECT_EQ(p[6], j);
}

TEST(Dimension, SharedInstancesHaveTheirExponents) {
    ExpectPowers(CKVdimension::GetNonDim(), 0, 0, 0, 0, 0, 0, 0);
    ExpectPowers(CKVdimension::GetLength(), 1, 0, 0, 0, 0, 0, 0);
    ExpectPowers(CKVdimension::GetMass(), 0, 1, 0, 0, 0, 0, 0);
    ExpectPowers(CKVdimension::GetTime(), 0, 0, 1, 0, 0, 0, 0);
    ExpectPowers(CKVdimension::GetTemp(), 0, 0, 0, 1, 0, 0, 0);
    ExpectPowers(CKVdimension::GetCurr(), 0, 0, 0, 0, 1, 0, 0);
    ExpectPowers(CKVdimension::GetSubs(), 0, 0, 0, 0, 0, 1, 0);
    ExpectPowers(CKVdimension::GetLumi(), 0, 0, 0, 0, 0, 0, 1);
}

TEST(Dimension, GetDimTypeOfSharedInstances) {
    EXPECT_EQ(CKVdimension::GetNonDim().GetDimType(), 0);
    EXPECT_EQ(CKVdimension::GetLength().GetDimType(), 1);
    EXPECT_EQ(CKVdimension::GetMass().GetDimType(), 2);
    EXPECT_EQ(CKVdimension::GetTime().GetDimType(), 3);
    EXPECT_EQ(CKVdimension::GetTemp().GetDimType(), 4);
    EXPECT_EQ(CKVdimension::GetCurr().GetDimType(), 5);
    EXPECT_EQ(CKVdimension::GetSubs().GetDimType(), 6);
    EXPECT_EQ(CKVdimension::GetLumi().GetDimType(), 7);
}

TEST(Dimension, GetDimTypeIgnoresTheExponentValue) {
    EXPECT_EQ((CKVdimension::GetLength() ^ -2.0).GetDimType(), 1);
    EXPECT_EQ((CKVdimension::GetLength() ^ -1.0).GetDimType(), 1);
    EXPECT_EQ(CKVdimension(0, 0, 0, 0, 0, 0, 0.5).GetDimType(), 7);
}

TEST(Dimension, GetDimTypeOfCompositeIsEight) {
    EXPECT_EQ((CKVdimension::GetLength() / CKVdimension::GetTime()).GetDimType(), 8);
    EXPECT_EQ(CKVdimension(0, 0, 0, 0, 0, 1, 1).GetDimType(), 8);
    EXPECT_EQ(CKVdimension(1, 0, 0, 0, 0, 0, 1).GetDimType(), 8);
}

TEST(Dimension, ProductAddsAndQuotientSubtracts) {
    CKVdimension a(1, 2, 3, 4, 5, 6, 7);
    CKVdimension b(0.5, -1, 2, 0, 1, -6, 0.25);
    ExpectPowers(a * b, 1.5, 1, 5, 4, 6, 0, 7.25);
    ExpectPowers(a / b, 0.5, 3, 1, 4, 4, 12, 6.75);
}

TEST(Dimension, PowerByZeroIsDimensionless) {
    CKVdimension a(1, -2, 3, 0.5, 0, 0, -1);
    CKVdimension z = a ^ 0.0;
    EXPECT_EQ(z.GetDimType(), 0);
    EXPECT_TRUE(z.IsEqv(CKVdimension::GetNonDim()));
}

TEST(Dimension, PowerByMinusOneChangesSigns) {
    ExpectPowers(CKVdimension(1, -2, 3, 0.5, 0, 0, -1) ^ -1.0, -1, 2, -3, -0.5, 0, 0, 1);
}

TEST(Dimension, IsEqvIsExact) {
    EXPECT_TRUE(((CKVdimension::GetLength() ^ 0.5) ^ 2.0).IsEqv(CKVdimension::GetLength()));
    CKVdimension tenth = CKVdimension::GetLength() ^ 0.1;
    CKVdimension fifth = CKVdimension::GetLength() ^ 0.2;
    CKVdimension third = CKVdimension::GetLength() ^ 0.3;
    EXPECT_FALSE((tenth * fifth).IsEqv(third));
    EXPECT_FALSE(CKVdimension::GetLength().IsEqv(CKVdimension::GetMass()));
    EXPECT_TRUE(CKVdimension(1, 2, 3, 4, 5, 6, 7).IsEqv(CKVdimension(1, 2, 3, 4, 5, 6, 7)));
    EXPECT_FALSE(CKVdimension(1, 2, 3, 4, 5, 6, 7).IsEqv(CKVdimension(1, 2, 3, 4, 5, 6, 7.5)));
}

TEST(Dimension, CopyKeepsExponents) {
    CKVdimension a(1, 2, 3, 4, 5, 6, 7);
    CKVdimension b(a);
    ExpectPowers(b, 1, 2, 3, 4, 5, 6, 7);
}

TEST(Dimension, AccessorsReturnTheSameObject) {
    EXPECT_EQ(&CKVdimension::GetNonDim(), &CKVdimension::GetNonDim());
    EXPECT_EQ(&CKVdimension::GetLength(), &CKVdimension::GetLength());
    EXPECT_EQ(&CKVdimension::GetLumi(), &CKVdimension::GetLumi());
    EXPECT_NE(&CKVdimension::GetLength(), &CKVdimension::GetMass());
}

} // namespace
