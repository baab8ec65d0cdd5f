#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmBaseValue.h>

#include <memory>

namespace Kesto {

class DmUndefinedType;

/// The value of a type of which no datum exists. It is always implicit and
/// refuses every write and every buffer operation; its Any is empty.
class KESTODM_API DmUninstantiableValue : public DmBaseValue {
public:
    bool isImplicit() const override;
    bool assign(std::shared_ptr<DmBaseValue> const& other) override;
    bool moveAssign(std::shared_ptr<DmBaseValue>&& other) override;
    Any toAny() const override;

    bool copyConstructIntoBuffer(void* buffer) const override;
    bool moveConstructIntoBuffer(void* buffer) override;
    bool copyAssignIntoBuffer(void* buffer) const override;
    bool moveAssignIntoBuffer(void* buffer) override;
    bool copyConstructFromBuffer(void const* buffer) override;
    bool moveConstructFromBuffer(void* buffer) override;
    bool copyAssignFromBuffer(void const* buffer) override;
    bool moveAssignFromBuffer(void* buffer) override;

protected:
    using DmBaseValue::DmBaseValue;
};

/// The value of a port of type "auto", whose type is not decided yet.
class KESTODM_API DmAutoValue : public DmUninstantiableValue, public DmInstanceCounter<DmAutoValue> {
public:
    DmAutoValue();
    ~DmAutoValue() override;
    std::shared_ptr<DmBaseValue> clone() const override;
};

/// The value of an undefined type: the library's "__undefined__" or a given one.
class KESTODM_API DmUndefinedValue : public DmUninstantiableValue,
                                     public DmInstanceCounter<DmUndefinedValue> {
public:
    DmUndefinedValue();
    explicit DmUndefinedValue(std::shared_ptr<DmUndefinedType const> const& type);
    ~DmUndefinedValue() override;
    std::shared_ptr<DmBaseValue> clone() const override;
};

} // namespace Kesto
