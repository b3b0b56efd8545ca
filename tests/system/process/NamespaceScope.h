#pragma once

#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"

/// Defined at namespace scope in NamespaceScopeValues.cpp.
extern lum::Matrix<float> const translation;
extern lum::Matrix<double> const product;
extern lum::Quaternionf const rotation;
extern lum::Matrix<float> const default_matrix;
