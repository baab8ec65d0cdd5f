#pragma once

#include <KestoDM/foundation/DmNamedEntity.h>

#include <memory>
#include <string>
#include <utility>

namespace KestoTest {

/// A named entity the tests can make freely; the library's own constructors
/// are protected.
class TestEntity : public Kesto::DmNamedEntity {
public:
    explicit TestEntity(std::string name, bool complete = true) : DmNamedEntity(std::move(name), complete) {}
    TestEntity(TestEntity const& other) : DmNamedEntity(other) {}
    TestEntity(TestEntity&& other) : DmNamedEntity(std::move(other)) {}

    using DmNamedEntity::resolveName;
    using DmNamedEntity::setInUpdate;

    static std::shared_ptr<TestEntity> make(std::string name) {
        return std::make_shared<TestEntity>(std::move(name));
    }
};

/// An entity whose full name has a scope in front, as scoped classes do.
class ScopedTestEntity : public TestEntity {
public:
    ScopedTestEntity(std::string scope, std::string name)
        : TestEntity(std::move(name)), m_scope(std::move(scope)) {}
    void resolveFullName(std::string& out) const override {
        out += m_scope;
        out += "::";
        TestEntity::resolveFullName(out);
    }

private:
    std::string m_scope;
};

} // namespace KestoTest
