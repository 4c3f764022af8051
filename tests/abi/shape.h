#pragma once

#include <string>

/// A public header in miniature; each definition changes it in one way that callers may or may not
/// survive.
#define SHAPE_API __attribute__((visibility("default")))

enum class Side {
    Left = 0,
#ifdef ANOTHER_VALUE
    Right = 2,
#else
    Right = 1,
#endif
};

struct Label {
#ifdef MEMBERS_SWAPPED
    std::string Domain;
    std::string Name;
#else
    std::string Name;
    std::string Domain;
#endif
#ifdef A_MEMBER_MORE
    std::string Realm;
#endif
};

class SHAPE_API Shape {
  public:
    virtual ~Shape();
#ifdef A_VIRTUAL_FUNCTION_BETWEEN
    virtual int Corners() const;
#endif
    virtual Label Describe() const;
#ifndef A_VIRTUAL_FUNCTION_LESS
    virtual Side Where() const;
#endif
};

SHAPE_API Shape* CreateShape(const Label& label);
#ifndef A_FUNCTION_LESS
#ifdef ANOTHER_PARAMETER
SHAPE_API bool IsRound(const Shape& shape, int corners);
#else
SHAPE_API bool IsRound(const Shape& shape);
#endif
#endif
#ifdef A_FUNCTION_MORE
SHAPE_API bool IsFlat(const Shape& shape);
#endif
