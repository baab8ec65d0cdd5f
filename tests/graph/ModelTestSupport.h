#pragma once

#include "graph/GraphTestSupport.h"

#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmBuiltInValue.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace KestoTest {

/// Records the live counts of the model's classes when a test starts and
/// expects each back at that number when it ends: whatever a test makes must
/// be gone by then. The process-wide types and namespaces are made before the
/// first count is taken. A fixture that holds more classes to account calls
/// expectBackAtEnd for each in its SetUp, after ModelTest::SetUp; one that
/// holds objects of its own drops them in its TearDown before calling
/// ModelTest::TearDown.
class ModelTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        // Touch the process-wide objects so that they are not counted as
        // made by the first test.
        Kesto::DmLibrary::getAutoType();
        Kesto::DmLibrary::getIntType();
        Kesto::DmLibrary::getLongType();
        Kesto::DmLibrary::getFloatType();
        Kesto::DmLibrary::getBoolType();
        Kesto::DmLibrary::getStringType();
        Kesto::DmLibrary::getAnyType();
        Kesto::DmLibrary::getArrayOfAnyType();
        Kesto::DmLibrary::getUndefinedType();
        Kesto::DmLibrary::getBuiltInNamespace();
        Kesto::DmLibrary::getReservedNamespace();
    }

    void SetUp() override {
        expectBackAtEnd<Kesto::DmNodeDef>("node definitions");
        expectBackAtEnd<Kesto::DmOverload>("overloads");
        expectBackAtEnd<Kesto::DmOverloadSet>("overload sets");
        expectBackAtEnd<Kesto::DmNode>("nodes");
        expectBackAtEnd<Kesto::DmPort>("ports");
        expectBackAtEnd<Kesto::DmPortDescription>("port descriptions");
        expectBackAtEnd<Kesto::DmBaseValue>("values");
        expectBackAtEnd<Kesto::DmNamedEntity>("named entities");
    }

    void TearDown() override {
        for (auto const& recorded : m_recorded) {
            EXPECT_EQ(recorded.current(), recorded.atStart) << recorded.what << " left alive";
        }
    }

    template <class T>
    static unsigned int count() {
        return Kesto::DmInstanceCounter<T>::getInstanceCount();
    }

    /// Records the live count of `T` now; TearDown expects it back, and says
    /// "<what> left alive" when it is not.
    template <class T>
    void expectBackAtEnd(std::string what) {
        m_recorded.push_back(Recorded{std::move(what), &count<T>, count<T>()});
    }

    /// Adds what whole loaded graphs hold besides definitions and nodes.
    void expectGraphsBackAtEnd() {
        expectBackAtEnd<Kesto::DmCompound>("compounds");
        expectBackAtEnd<Kesto::DmConnection>("connections");
        expectBackAtEnd<Kesto::DmURI>("URIs");
    }

private:
    struct Recorded {
        std::string what;
        unsigned int (*current)();
        unsigned int atStart;
    };

    std::vector<Recorded> m_recorded;
};

/// A port description that `flags` cannot refuse.
inline std::shared_ptr<Kesto::DmPortDescription>
port(std::string const& name, std::shared_ptr<Kesto::DmBaseType const> type, Kesto::PortDirection direction) {
    return Kesto::DmPortDescription::newPortDescription(name, std::move(type), direction,
                                                        Kesto::kNameVerbatim);
}

inline std::shared_ptr<Kesto::DmPortDescription> input(std::string const& name,
                                                       std::shared_ptr<Kesto::DmBaseType const> type) {
    return port(name, std::move(type), Kesto::kDirectionInput);
}

inline std::shared_ptr<Kesto::DmPortDescription> output(std::string const& name,
                                                        std::shared_ptr<Kesto::DmBaseType const> type) {
    return port(name, std::move(type), Kesto::kDirectionOutput);
}

/// The names of a node's ports or a definition's port descriptions, in order.
template <class Map>
std::vector<std::string> portNames(Map const& map) {
    return keysOf(map);
}

/// A definition written by a host: an overload that is neither native, nor a
/// compound, nor a terminal, nor a placeholder, free to move between scopes.
/// Its import copies nothing: it records what it was asked and succeeds.
class UserDef : public Kesto::DmOverload {
public:
    struct ImportCall {
        Kesto::DmScope* scope;
        Kesto::DmNameResolutionType type;
        std::string name;
    };

    explicit UserDef(std::string name) : DmOverload(std::move(name), true) {}

    static std::shared_ptr<UserDef> make(std::string name) {
        return std::make_shared<UserDef>(std::move(name));
    }

    Kesto::DmStatus import(std::shared_ptr<Kesto::DmScope> const& scope, Kesto::DmNameResolutionType type,
                           std::string const& name, std::shared_ptr<Kesto::DmNodeDef>&,
                           ImportErrorFlags) override {
        m_imports.push_back(ImportCall{scope.get(), type, name});
        return Kesto::DmStatus::kSuccess;
    }

    /// The imports asked of it, in order.
    std::vector<ImportCall> const& imports() const { return m_imports; }

private:
    std::vector<ImportCall> m_imports;
};

/// A host definition `name` with the input "x" of type `x` and the int output "out".
inline std::shared_ptr<UserDef> makeUserDef(std::shared_ptr<Kesto::DmBaseType const> const& x,
                                            std::string const& name = "op") {
    auto def = UserDef::make(name);
    def->addPortDescription(input("x", x), Kesto::kFailOnClash);
    def->addPortDescription(output("out", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    return def;
}

/// A host definition `name` with the int input "x" and the int output "out".
inline std::shared_ptr<UserDef> makeUserDef(std::string const& name = "op") {
    return makeUserDef(Kesto::DmLibrary::getIntType(), name);
}

/// A pass-through native definition `name` with the int inputs "a" and "b" and the int output "out".
inline std::shared_ptr<Kesto::DmNativeNodeDef> makeThreePortDef(std::string const& name = "op") {
    auto def = Kesto::DmNativeNodeDef::newNativeNodeDef(name, Kesto::DmNativeNodeDef::kPass);
    def->addPortDescription(input("a", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    def->addPortDescription(input("b", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    def->addPortDescription(output("out", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    return def;
}

/// An associative definition "add" of the native kind `kind`: the associative
/// int inputs `first` and `second` and the int output `out`.
inline std::shared_ptr<Kesto::DmNativeNodeDef>
makeAssociativeDef(std::string const& first = "a", std::string const& second = "b",
                   std::string const& out = "out",
                   Kesto::DmNativeNodeDef::NativeKind kind = Kesto::DmNativeNodeDef::kPass) {
    auto def = Kesto::DmNativeNodeDef::newNativeNodeDef("add", kind);
    def->setAssociativity(Kesto::DmNodeDef::kLeftToRight);
    auto const firstPort = input(first, Kesto::DmLibrary::getIntType());
    auto const secondPort = input(second, Kesto::DmLibrary::getIntType());
    def->addPortDescription(firstPort, Kesto::kFailOnClash);
    def->addPortDescription(secondPort, Kesto::kFailOnClash);
    def->addPortDescription(output(out, Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    EXPECT_EQ(firstPort->setAssociative(true), Kesto::DmStatus::kSuccess);
    EXPECT_EQ(secondPort->setAssociative(true), Kesto::DmStatus::kSuccess);
    return def;
}

/// A terminal `name` with the int inputs "a", "b" and "c".
inline std::shared_ptr<Kesto::DmTerminalNodeDef> makeTerminalWithInputs(std::string const& name = "result") {
    auto terminal = Kesto::DmTerminalNodeDef::createTerminalNodeDef(name, Kesto::kNameVerbatim);
    for (auto const* port : {"a", "b", "c"}) {
        terminal->addPortDescription(input(port, Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    }
    return terminal;
}

/// The names of the ports of `states`' records, in order, with "-" for a disabled one.
inline std::vector<std::string> recordsOf(Kesto::DmTerminalStates const& states) {
    std::vector<std::string> records;
    for (auto const& state : states) {
        records.push_back((state.isEnabled() ? "" : "-") + state.getPort()->getName());
    }
    return records;
}

inline std::shared_ptr<Kesto::DmIntValue> intValue(int data) {
    auto value = std::make_shared<Kesto::DmIntValue>();
    value->setData(data);
    return value;
}

inline std::shared_ptr<Kesto::DmURI> makeURI(std::string const& path) {
    return std::make_shared<Kesto::DmFileURI>(path, "");
}

/// The overload set `name` of `scope`, or null.
inline std::shared_ptr<Kesto::DmOverloadSet> setOf(Kesto::DmScope const& scope, std::string const& name) {
    std::shared_ptr<Kesto::DmOverloadSet> set;
    scope.findNodeDef(name, set);
    return set;
}

/// The port description `name` of a definition's interface, or null.
inline std::shared_ptr<Kesto::DmPortDescription> described(Kesto::DmNodeDef const& def,
                                                           std::string const& name) {
    return def.getPortsInterface()[name];
}

} // namespace KestoTest
