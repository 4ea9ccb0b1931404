/// Numbers, and points, sizes and rectangles in points.
#pragma once

#if defined(__APPLE__) && __has_include(<CoreGraphics/CGGeometry.h>)
#include <CoreGraphics/CGGeometry.h>
#else
using CGFloat = double;
struct CGPoint {
  CGFloat x;
  CGFloat y;
};
struct CGSize {
  CGFloat width;
  CGFloat height;
};
struct CGRect {
  CGPoint origin;
  CGSize size;
};
#endif

namespace platform {

using NSInteger = long;
using NSUInteger = unsigned long;

using NSSize = CGSize;
using NSRect = CGRect;

struct NSRange {
  NSUInteger location;
  NSUInteger length;
};

} // namespace platform
