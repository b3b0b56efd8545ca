#include "Check.h"
#include "NamespaceScope.h"

// Runs before all initialisers of normal priority.
[[gnu::constructor(101)]] void UseLumFirst() { lum::test::CheckIdentities(); }

lum::Matrix<float> const translation = lum::Matrix<float>::Translate(1, 2, 3);
lum::Matrix<double> const product =
    lum::Matrix<double>::Translate(1, 2, 3).GetInverse() * lum::Matrix<double>::Scale(2);
lum::Quaternionf const rotation(lum::Vector<float, 3>(0, 0, 1), 1);
lum::Matrix<float> const default_matrix;
