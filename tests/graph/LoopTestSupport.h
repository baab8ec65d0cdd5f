#pragma once

#include "graph/ModelTestSupport.h"

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

/// ModelTest that also expects the compounds, loops, scopes, types and
/// metadata items that a test makes to be gone when it ends.
class LoopTest : public ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        m_compounds = count<Kesto::DmCompound>();
        m_loops = count<Kesto::DmLoopingCompound>();
        m_whiles = count<Kesto::DmWhileCompound>();
        m_iterates = count<Kesto::DmIterateCompound>();
        m_forEaches = count<Kesto::DmForEachCompound>();
        m_scopes = count<Kesto::DmScope>();
        m_types = count<Kesto::DmBaseType>();
        m_items = count<Kesto::DmMetadataItem>();
    }

    void TearDown() override {
        EXPECT_EQ(count<Kesto::DmCompound>(), m_compounds) << "compounds left alive";
        EXPECT_EQ(count<Kesto::DmLoopingCompound>(), m_loops) << "loops left alive";
        EXPECT_EQ(count<Kesto::DmWhileCompound>(), m_whiles) << "while loops left alive";
        EXPECT_EQ(count<Kesto::DmIterateCompound>(), m_iterates) << "iterate loops left alive";
        EXPECT_EQ(count<Kesto::DmForEachCompound>(), m_forEaches) << "for-each loops left alive";
        EXPECT_EQ(count<Kesto::DmScope>(), m_scopes) << "scopes left alive";
        EXPECT_EQ(count<Kesto::DmBaseType>(), m_types) << "types left alive";
        EXPECT_EQ(count<Kesto::DmMetadataItem>(), m_items) << "metadata items left alive";
        ModelTest::TearDown();
    }

private:
    unsigned int m_compounds = 0;
    unsigned int m_loops = 0;
    unsigned int m_whiles = 0;
    unsigned int m_iterates = 0;
    unsigned int m_forEaches = 0;
    unsigned int m_scopes = 0;
    unsigned int m_types = 0;
    unsigned int m_items = 0;
};

inline std::shared_ptr<Kesto::DmWhileCompound> makeWhile(std::string const& name = "loop") {
    auto loop = Kesto::DmWhileCompound::createWhileCompound(name, makeLogger());
    loop->initialize();
    return loop;
}

inline std::shared_ptr<Kesto::DmIterateCompound> makeIterate(std::string const& name = "loop") {
    auto loop = Kesto::DmIterateCompound::createIterateCompound(name, makeLogger());
    loop->initialize();
    return loop;
}

inline std::shared_ptr<Kesto::DmForEachCompound> makeForEach(std::string const& name = "loop") {
    auto loop = Kesto::DmForEachCompound::createForEachCompound(name, makeLogger());
    loop->initialize();
    return loop;
}

inline std::shared_ptr<Kesto::DmArrayType> arrayOf(std::shared_ptr<Kesto::DmBaseType const> element) {
    return std::make_shared<Kesto::DmArrayType>(std::move(element));
}

inline std::shared_ptr<Kesto::DmUnknownType> makeUnknownType(std::string const& name) {
    return std::make_shared<Kesto::DmUnknownType>(Kesto::DmExternBaseType::InternalConstructor(), name);
}

/// A description with the loop role `attribute`.
inline std::shared_ptr<Kesto::DmPortDescription> withRole(std::shared_ptr<Kesto::DmPortDescription> port,
                                                          Kesto::IterationAttribute attribute) {
    port->setIterationAttribute(attribute);
    return port;
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
