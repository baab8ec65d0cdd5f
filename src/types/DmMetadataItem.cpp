#include <KestoDM/types/DmMetadataItem.h>

#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <sstream>

namespace Kesto {

namespace {

enum class Kind { kNone, kBool, kLong, kDouble, kString, kOther };

Kind kindOf(std::shared_ptr<DmBaseValue> const& value) {
    if (!value) {
        return Kind::kNone;
    }
    switch (value->getType()->getTypeKind()) {
    case kTypeBool:
        return Kind::kBool;
    case kTypeLong:
        return Kind::kLong;
    case kTypeDouble:
        return Kind::kDouble;
    case kTypeString:
        return Kind::kString;
    default:
        return Kind::kOther;
    }
}

template <class ValueClass>
ValueClass& as(std::shared_ptr<DmBaseValue> const& value) {
    return static_cast<ValueClass&>(*value);
}

bool textIsTrue(std::string const& text) {
    return text == "true" || text == "TRUE" || text == "True";
}

// Truncation towards zero that stays defined for NaN and out-of-range values.
std::int64_t truncateToLong(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= 9223372036854775808.0) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (value < -9223372036854775808.0) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return static_cast<std::int64_t>(value);
}

template <class T>
std::string streamText(T value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

template <class ValueClass, class T>
std::shared_ptr<DmBaseValue> makeValue(T const& datum) {
    auto value = std::make_shared<ValueClass>();
    value->setData(datum);
    return value;
}

} // namespace

DmMetadataItem::DmMetadataItem(std::string name) : DmNamedEntity(std::move(name), true) {}

DmMetadataItem::DmMetadataItem(std::string name, std::string const& value)
    : DmNamedEntity(std::move(name), true), m_value(makeValue<DmStringValue>(String(value))) {}

DmMetadataItem::DmMetadataItem(std::string name, char const* value)
    : DmMetadataItem(std::move(name), std::string(value != nullptr ? value : "")) {}

DmMetadataItem::DmMetadataItem(std::string name, double value)
    : DmNamedEntity(std::move(name), true), m_value(makeValue<DmDoubleValue>(value)) {}

DmMetadataItem::DmMetadataItem(std::string name, std::int64_t value)
    : DmNamedEntity(std::move(name), true), m_value(makeValue<DmLongValue>(value)) {}

DmMetadataItem::DmMetadataItem(std::string name, int value)
    : DmMetadataItem(std::move(name), static_cast<std::int64_t>(value)) {}

DmMetadataItem::DmMetadataItem(std::string name, bool value)
    : DmNamedEntity(std::move(name), true), m_value(makeValue<DmBoolValue>(value)) {}

DmMetadataItem::DmMetadataItem(std::string name, std::shared_ptr<DmBaseValue> value)
    : DmNamedEntity(std::move(name), true), m_value(std::move(value)) {}

DmMetadataItem::~DmMetadataItem() = default;

bool DmMetadataItem::isLeaf() const {
    return !hasMetadata();
}

void DmMetadataItem::clear() noexcept {
    m_value.reset();
}

DmStatus DmMetadataItem::getBoolValue(bool& out) const {
    switch (kindOf(m_value)) {
    case Kind::kBool:
        out = as<DmBoolValue>(m_value).getData();
        return DmStatus::kSuccess;
    case Kind::kLong:
        out = as<DmLongValue>(m_value).getData() != 0;
        return DmStatus::kSuccess;
    case Kind::kDouble:
        out = as<DmDoubleValue>(m_value).getData() != 0.0;
        return DmStatus::kSuccess;
    case Kind::kString:
        out = textIsTrue(as<DmStringValue>(m_value).getData().str());
        return DmStatus::kSuccess;
    default:
        return DmStatus::kFailure;
    }
}

DmStatus DmMetadataItem::getLongValue(std::int64_t& out) const {
    switch (kindOf(m_value)) {
    case Kind::kNone:
        return DmStatus::kFailure;
    case Kind::kBool:
        out = as<DmBoolValue>(m_value).getData() ? 1 : 0;
        return DmStatus::kSuccess;
    case Kind::kLong:
        out = as<DmLongValue>(m_value).getData();
        return DmStatus::kSuccess;
    case Kind::kDouble:
        out = truncateToLong(as<DmDoubleValue>(m_value).getData());
        return DmStatus::kSuccess;
    case Kind::kString:
        out = std::strtoll(as<DmStringValue>(m_value).getData().c_str(), nullptr, 0);
        return DmStatus::kSuccess;
    default:
        // Another kind is no failure here and `out` stays: hosts rely on it.
        return DmStatus::kSuccess;
    }
}

DmStatus DmMetadataItem::getDoubleValue(double& out) const {
    switch (kindOf(m_value)) {
    case Kind::kBool:
        out = as<DmBoolValue>(m_value).getData() ? 1.0 : 0.0;
        return DmStatus::kSuccess;
    case Kind::kLong:
        out = static_cast<double>(as<DmLongValue>(m_value).getData());
        return DmStatus::kSuccess;
    case Kind::kDouble:
        out = as<DmDoubleValue>(m_value).getData();
        return DmStatus::kSuccess;
    case Kind::kString:
        out = std::strtod(as<DmStringValue>(m_value).getData().c_str(), nullptr);
        return DmStatus::kSuccess;
    default:
        return DmStatus::kFailure;
    }
}

DmStatus DmMetadataItem::getStringValue(std::string& out) const {
    switch (kindOf(m_value)) {
    case Kind::kBool:
        out = as<DmBoolValue>(m_value).getData() ? "true" : "false";
        return DmStatus::kSuccess;
    case Kind::kLong:
        out = streamText(as<DmLongValue>(m_value).getData());
        return DmStatus::kSuccess;
    case Kind::kDouble:
        out = streamText(as<DmDoubleValue>(m_value).getData());
        return DmStatus::kSuccess;
    case Kind::kString:
        out = as<DmStringValue>(m_value).getData().str();
        return DmStatus::kSuccess;
    default:
        return DmStatus::kFailure;
    }
}

DmStatus DmMetadataItem::setBoolValue(bool value) {
    switch (kindOf(m_value)) {
    case Kind::kBool:
        as<DmBoolValue>(m_value).setData(value);
        return DmStatus::kSuccess;
    case Kind::kLong:
        as<DmLongValue>(m_value).setData(std::int64_t(value ? 1 : 0));
        return DmStatus::kSuccess;
    case Kind::kDouble:
        as<DmDoubleValue>(m_value).setData(value ? 1.0 : 0.0);
        return DmStatus::kSuccess;
    case Kind::kString:
        as<DmStringValue>(m_value).setData(String(value ? "true" : "false"));
        return DmStatus::kSuccess;
    default:
        return DmStatus::kFailure;
    }
}

DmStatus DmMetadataItem::setLongValue(std::int64_t value) {
    switch (kindOf(m_value)) {
    case Kind::kBool:
        as<DmBoolValue>(m_value).setData(value != 0);
        return DmStatus::kSuccess;
    case Kind::kLong:
        as<DmLongValue>(m_value).setData(value);
        return DmStatus::kSuccess;
    case Kind::kDouble:
        as<DmDoubleValue>(m_value).setData(static_cast<double>(value));
        return DmStatus::kSuccess;
    case Kind::kString:
        as<DmStringValue>(m_value).setData(String(streamText(value)));
        return DmStatus::kSuccess;
    default:
        return DmStatus::kFailure;
    }
}

DmStatus DmMetadataItem::setDoubleValue(double value) {
    switch (kindOf(m_value)) {
    case Kind::kBool:
        as<DmBoolValue>(m_value).setData(value != 0.0);
        return DmStatus::kSuccess;
    case Kind::kLong:
        as<DmLongValue>(m_value).setData(truncateToLong(value));
        return DmStatus::kSuccess;
    case Kind::kDouble:
        as<DmDoubleValue>(m_value).setData(value);
        return DmStatus::kSuccess;
    case Kind::kString:
        as<DmStringValue>(m_value).setData(String(streamText(value)));
        return DmStatus::kSuccess;
    default:
        return DmStatus::kFailure;
    }
}

DmStatus DmMetadataItem::setStringValue(std::string const& value) {
    switch (kindOf(m_value)) {
    case Kind::kBool:
        as<DmBoolValue>(m_value).setData(textIsTrue(value));
        return DmStatus::kSuccess;
    case Kind::kLong: {
        errno = 0;
        long long const parsed = std::strtoll(value.c_str(), nullptr, 0);
        if (errno == ERANGE || parsed < std::numeric_limits<std::int32_t>::min() ||
            parsed > std::numeric_limits<std::int32_t>::max()) {
            return DmStatus::kInvalidArgument;
        }
        as<DmLongValue>(m_value).setData(std::int64_t(parsed));
        return DmStatus::kSuccess;
    }
    case Kind::kDouble:
        as<DmDoubleValue>(m_value).setData(std::strtod(value.c_str(), nullptr));
        return DmStatus::kSuccess;
    case Kind::kString:
        as<DmStringValue>(m_value).setData(String(value));
        return DmStatus::kSuccess;
    default:
        return DmStatus::kFailure;
    }
}

std::shared_ptr<DmMetadataItem> DmMetadataItem::clone() const {
    auto copy = std::make_shared<DmMetadataItem>(getName());
    if (m_value) {
        copy->m_value = m_value->clone();
    }
    if (hasMetadata()) {
        getMetadata()->clone(copy->getMetadata());
    }
    return copy;
}

} // namespace Kesto
