#include "saml/foundations/checked_cast.h"

#include "support/thrown.h"

#include <gtest/gtest.h>

namespace Saml {
namespace CastTest {

struct Animal {
    virtual ~Animal() = default;
};
struct Named {
    virtual ~Named() = default;
};
struct Dog : Animal, Named {};
struct Puppy : Dog {};
struct Cat : Animal {};

TEST(CheckedCast, GivesTheSameObjectAsItsOwnClass) {
    Dog dog;
    Animal* const animal = &dog;
    EXPECT_EQ(CheckedCast<Dog>(animal), &dog);
}

TEST(CheckedCast, AcceptsAnObjectOfAMoreSpecificClass) {
    Puppy puppy;
    Animal* const animal = &puppy;
    EXPECT_EQ(CheckedCast<Dog>(animal), static_cast<Dog*>(&puppy));
}

TEST(CheckedCast, CrossesToAnotherBaseOfTheObject) {
    Dog dog;
    Animal* const animal = &dog;
    EXPECT_EQ(CheckedCast<Named>(animal), static_cast<Named*>(&dog));
}

TEST(CheckedCast, KeepsConst) {
    const Dog dog{};
    const Animal* const animal = &dog;
    EXPECT_EQ(CheckedCast<const Dog>(animal), &dog);
}

TEST(CheckedCast, NamesTheTargetAndTheObjectsOwnClassOnAMismatch) {
    Cat cat;
    Animal* const animal = &cat;
    EXPECT_EQ(MessageOf<TypeMismatchException>([&] { CheckedCast<Dog>(animal); }),
              "Type Mismatch: expected: Saml::CastTest::Dog, found: Saml::CastTest::Cat");

    Dog dog;
    Animal* const grown = &dog;
    EXPECT_EQ(MessageOf<TypeMismatchException>([&] { CheckedCast<Puppy>(grown); }),
              "Type Mismatch: expected: Saml::CastTest::Puppy, found: Saml::CastTest::Dog");
}

}  // namespace CastTest
}  // namespace Saml
