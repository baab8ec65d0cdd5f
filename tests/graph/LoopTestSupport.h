#pragma once

#include "graph/ModelTestSupport.h"
#include "types/DmExternTypeFactory.h"

#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmUnknownType.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace KestoTest {

inline std::shared_ptr<Kesto::DmArrayType> arrayOf(std::shared_ptr<Kesto::DmBaseType const> element) {
    return std::make_shared<Kesto::DmArrayType>(std::move(element));
}

/// ModelTest that also expects the compounds, loops, scopes, types and
/// metadata items that a test makes to be gone when it ends.
class LoopTest : public ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        expectBackAtEnd<Kesto::DmCompound>("compounds");
        expectBackAtEnd<Kesto::DmLoopingCompound>("loops");
        expectBackAtEnd<Kesto::DmWhileCompound>("while loops");
        expectBackAtEnd<Kesto::DmIterateCompound>("iterate loops");
        expectBackAtEnd<Kesto::DmForEachCompound>("for-each loops");
        expectBackAtEnd<Kesto::DmScope>("scopes");
        expectBackAtEnd<Kesto::DmBaseType>("types");
        expectBackAtEnd<Kesto::DmMetadataItem>("metadata items");
    }

    std::shared_ptr<Kesto::DmArrayType> const m_intArray = arrayOf(Kesto::DmLibrary::getIntType());
};

inline std::shared_ptr<Kesto::DmWhileCompound> makeWhile(std::string const& name = "loop") {
    auto loop = Kesto::DmWhileCompound::createWhileCompound(name);
    return loop;
}

inline std::shared_ptr<Kesto::DmIterateCompound> makeIterate(std::string const& name = "loop") {
    auto loop = Kesto::DmIterateCompound::createIterateCompound(name);
    return loop;
}

inline std::shared_ptr<Kesto::DmForEachCompound> makeForEach(std::string const& name = "loop") {
    auto loop = Kesto::DmForEachCompound::createForEachCompound(name);
    return loop;
}

inline std::shared_ptr<Kesto::DmUnknownType> makeUnknownType(std::string const& name) {
    return Kesto::Internal::ExternTypeFactory::make<Kesto::DmUnknownType>(name);
}

/// A description with the loop role `attribute`.
inline std::shared_ptr<Kesto::DmPortDescription> withRole(std::shared_ptr<Kesto::DmPortDescription> port,
                                                          Kesto::IterationAttribute attribute) {
    port->setIterationAttribute(attribute);
    return port;
}

/// The self node of a loop as the looping self node it must be, or null.
inline Kesto::DmLoopingCompound::DmLoopingSelfNode const* loopingSelfNodeOf(Kesto::DmCompound const& loop) {
    return dynamic_cast<Kesto::DmLoopingCompound::DmLoopingSelfNode const*>(loop.getInternalSelfNode().get());
}

/// The description of the self node's port `name`, or null.
inline std::shared_ptr<Kesto::DmPortDescription> insideOf(Kesto::DmCompound const& compound,
                                                          std::string const& name) {
    auto const port = (*compound.getSelfNode())[name];
    return port ? port->getPortDescription() : nullptr;
}

/// The text of the entity's "icon" metadata item, or "<none>".
inline std::string iconOf(Kesto::DmEntity const& entity) {
    auto const items = entity.getMetadata()->find("icon");
    std::string icon = "<none>";
    if (items.size() == 1) {
        items.front()->getStringValue(icon);
    }
    return icon;
}

/// The full name of a type, or "<null>".
inline std::string typeName(std::shared_ptr<Kesto::DmBaseType const> const& type) {
    return type ? fullName(*type) : std::string("<null>");
}

} // namespace KestoTest
