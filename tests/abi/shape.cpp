#include "shape.h"

namespace {

/// What no header declares may change as it likes.
class PrivateShape : public Shape {
  public:
    explicit PrivateShape(const Label& label) : label_(label) {}
    Label Describe() const override { return label_; }

  private:
    Label label_;
#ifdef A_PRIVATE_MEMBER_MORE
    int corners_ = 3;
#endif
};

}  // namespace

Shape::~Shape() = default;
#ifdef A_VIRTUAL_FUNCTION_BETWEEN
int Shape::Corners() const {
    return 0;
}
#endif
Label Shape::Describe() const {
    return {};
}
#ifndef A_VIRTUAL_FUNCTION_LESS
Side Shape::Where() const {
    return Side::Left;
}
#endif

Shape* CreateShape(const Label& label) {
    return new PrivateShape(label);
}
#ifndef A_FUNCTION_LESS
#ifdef ANOTHER_PARAMETER
bool IsRound(const Shape&, int corners) {
    return corners == 0;
}
#else
bool IsRound(const Shape&) {
    return true;
}
#endif
#endif
#ifdef A_FUNCTION_MORE
bool IsFlat(const Shape&) {
    return true;
}
#endif
