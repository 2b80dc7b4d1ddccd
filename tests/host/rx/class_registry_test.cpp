#include "host/rx/class_registry.h"

#include <gtest/gtest.h>

#include <set>

namespace {

AcRxObject* createNothing() {
    return nullptr;
}

class Thing : public AcRxObject {
  public:
    AcRxClass* isA() const override { return descriptor; }
    static inline AcRxClass* descriptor = nullptr;
};

TEST(ClassRegistryTest, ARegisteredNameIsAnsweredUnchanged) {
    AcRxClassRegistry registry;
    AcRxClass* const first =
        registry.newClass(L"Pipe", L"AcRxObject", 3, createNothing, L"PIPE", L"Piping|1", 7);
    EXPECT_EQ(registry.newClass(L"Pipe", L"Other", 9), first);
    EXPECT_STREQ(first->parentName(), L"AcRxObject");
    EXPECT_EQ(first->proxyFlags(), 3);
    EXPECT_EQ(first->version(), 7);
    EXPECT_STREQ(first->appName(), L"Piping|1");
    EXPECT_EQ(registry.findByDxfName(L"PIPE"), first);
    EXPECT_EQ(registry.findByDxfName(L""), nullptr);
    EXPECT_EQ(registry.dictionary().at(L"Pipe"), first);
    EXPECT_EQ(first->isA(), AcRxClass::desc());
    EXPECT_EQ(registry.newClass(nullptr, nullptr), nullptr);
    EXPECT_EQ(registry.newClass(L"", nullptr), nullptr);
}

TEST(ClassRegistryTest, HierarchyIsLinkedWhenItIsBuilt) {
    AcRxClassRegistry registry;
    AcRxClass* const child = registry.newClass(L"Child", L"Base");  // before its parent
    AcRxClass* const base = registry.newClass(L"Base", L"AcRxObject");
    AcRxClass* const orphan = registry.newClass(L"Orphan", L"Nowhere");
    EXPECT_EQ(child->myParent(), nullptr);
    EXPECT_FALSE(child->isDerivedFrom(base));
    registry.buildHierarchy();
    EXPECT_EQ(child->myParent(), base);
    EXPECT_TRUE(child->isDerivedFrom(registry.find(L"AcRxObject")));
    EXPECT_TRUE(child->isDerivedFrom(child));
    EXPECT_FALSE(base->isDerivedFrom(child));
    EXPECT_FALSE(child->isDerivedFrom(nullptr));
    EXPECT_EQ(orphan->myParent(), nullptr);
}

TEST(ClassRegistryTest, ParentsInACircleDoNotHang) {
    AcRxClassRegistry registry;
    AcRxClass* const a = registry.newClass(L"A", L"B");
    AcRxClass* const b = registry.newClass(L"B", L"C");
    AcRxClass* const c = registry.newClass(L"C", L"A");
    AcRxClass* const self = registry.newClass(L"Self", L"Self");
    registry.buildHierarchy();
    for (AcRxClass* const each : {a, b, c, self}) {
        std::set<AcRxClass*> seen;
        for (AcRxClass* at = each; at != nullptr; at = at->myParent()) {
            ASSERT_TRUE(seen.insert(at).second);
        }
    }
    EXPECT_EQ(self->myParent(), nullptr);
}

TEST(ClassRegistryTest, DeletingUnlinksAndLeavesTheDescriptorReadable) {
    AcRxClassRegistry registry;
    AcRxClass* const base = registry.newClass(L"Base", L"AcRxObject");
    AcRxClass* const child = registry.newClass(L"Child", L"Base");
    registry.buildHierarchy();
    Thing extension;
    child->addX(base, &extension);
    Thing::descriptor = base;
    Thing thing;

    registry.deleteClass(base);
    registry.deleteClass(base);
    registry.deleteClass(nullptr);
    EXPECT_EQ(child->myParent(), nullptr);
    EXPECT_EQ(child->getX(base), nullptr);
    EXPECT_EQ(registry.find(L"Base"), nullptr);
    EXPECT_EQ(registry.dictionary().at(L"Base"), nullptr);
    EXPECT_FALSE(thing.isKindOf(child));
    EXPECT_TRUE(thing.isKindOf(base));
}

// What hosts made one after the other in one process need.
TEST(ClassRegistryTest, ADescriptorOutlivesItsRegistryAndServesTheNext) {
    Thing extension;
    AcRxClass* first = nullptr;
    {
        AcRxClassRegistry registry;
        first = registry.newClass(L"Thing", L"AcRxObject", 1, createNothing, L"THING", L"App", 2);
        registry.buildHierarchy();
        first->addX(registry.find(L"AcRxClass"), &extension);
        Thing::descriptor = first;
    }
    EXPECT_EQ(Thing().isA()->myParent(), nullptr);
    AcRxClassRegistry other;
    AcRxClass* const second = other.newClass(L"Thing", nullptr);
    EXPECT_EQ(second, first);
    EXPECT_STREQ(second->dxfName(), L"");
    EXPECT_STREQ(second->parentName(), L"");
    EXPECT_EQ(second->version(), 0);
    EXPECT_EQ(second->create(), nullptr);
    EXPECT_EQ(second->getX(other.find(L"AcRxClass")), nullptr);
}

TEST(ClassRegistryTest, RegistriesAtTheSameTimeHaveDescriptorsOfTheirOwn) {
    AcRxClassRegistry one, two;
    AcRxClass* const inOne = one.newClass(L"Shared", nullptr);
    AcRxClass* const inTwo = two.newClass(L"Shared", nullptr);
    EXPECT_NE(inOne, inTwo);
    two.deleteClass(inOne);
    EXPECT_EQ(one.find(L"Shared"), inOne);
}

TEST(ProtocolExtensionTest, TheNearestClassAnswers) {
    AcRxClassRegistry registry;
    AcRxClass* const base = registry.newClass(L"Base", L"AcRxObject");
    AcRxClass* const child = registry.newClass(L"Child", L"Base");
    AcRxClass* const protocol = registry.newClass(L"Protocol", L"AcRxObject");
    registry.buildHierarchy();
    Thing::descriptor = child;
    Thing thing, forBase, forChild;

    EXPECT_EQ(thing.queryX(protocol), nullptr);
    EXPECT_EQ(base->addX(protocol, &forBase), nullptr);
    EXPECT_EQ(thing.queryX(protocol), &forBase);
    EXPECT_EQ(child->getX(protocol), nullptr);
    EXPECT_EQ(child->addX(protocol, &forChild), nullptr);
    EXPECT_EQ(thing.queryX(protocol), &forChild);
    EXPECT_EQ(child->addX(protocol, &forBase), &forChild);
    EXPECT_EQ(child->delX(protocol), &forBase);
    EXPECT_EQ(child->delX(protocol), nullptr);
    EXPECT_EQ(thing.queryX(protocol), &forBase);
    Thing::descriptor = nullptr;
    EXPECT_EQ(thing.queryX(protocol), nullptr);
    EXPECT_FALSE(thing.isKindOf(base));
}

TEST(DictionaryTest, PutReplaceRemove) {
    sg::Dictionary dictionary;
    Thing a, b;
    EXPECT_EQ(dictionary.atPut(L"key", &a), nullptr);
    EXPECT_EQ(dictionary.atPut(L"key", &b), &a);
    EXPECT_EQ(dictionary.at(L"KEY"), nullptr);
    EXPECT_EQ(dictionary.at(nullptr), nullptr);
    dictionary.atPut(L"also", &a);
    std::wstring keys;
    dictionary.forEach([&](const wchar_t* key, AcRxObject*) {
        keys += key;
        dictionary.remove(key);
    });
    EXPECT_EQ(keys, L"alsokey");
    EXPECT_EQ(dictionary.numEntries(), 0u);
    EXPECT_EQ(dictionary.remove(L"key"), nullptr);
}

TEST(ClassRegistryTest, AnApplicationMayNameItselfOtherwiseInARelease) {
    const auto olderName = [](const AcRxClass*, std::wstring& appName, int release) {
        if (release < 31) appName += L" R1";
    };
    AcRxClassRegistry registry;
    const AcRxClass* const pipe =
        registry.newClass(L"Pipe", L"AcRxObject", 25, 2, 1, nullptr, L"PIPE", L"Piping", olderName);
    EXPECT_EQ(pipe->appNameFor(29), L"Piping R1");
    EXPECT_EQ(pipe->appNameFor(31), L"Piping");
    EXPECT_EQ(pipe->appName(), std::wstring(L"Piping"));
    // A class that is registered keeps what it has; one that comes back has nothing of before.
    EXPECT_EQ(registry.newClass(L"Pipe", nullptr, 33, 0, 0, nullptr, L"OTHER", L"Other", nullptr),
              pipe);
    int release = 0, maintenance = 0;
    pipe->getClassVersion(release, maintenance);
    EXPECT_EQ(std::pair(release, maintenance), std::pair(25, 2));
    registry.deleteClass(const_cast<AcRxClass*>(pipe));
    const AcRxClass* const again = registry.newClass(L"Pipe", L"AcRxObject");
    again->getClassVersion(release, maintenance);
    EXPECT_EQ(std::pair(release, maintenance), std::pair(0, 0));
    EXPECT_EQ(again->appNameFor(29), L"");
}

TEST(SystemRegistryTest, HoldsTheClassAndServiceDictionaries) {
    AcRxClassRegistry classes;
    sg::SystemRegistry registry(classes.dictionary());
    EXPECT_EQ(registry.root()->at(L"ClassDictionary"), &classes.dictionary());
    EXPECT_EQ(registry.root()->at(L"ServiceDictionary"), registry.services());
    EXPECT_NE(registry.classes()->at(L"AcRxObject"), nullptr);
}

}  // namespace
