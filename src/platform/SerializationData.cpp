#include <KestoDM/platform/SerializationData.h>

namespace Kesto {

// The node classes hold vectors of SerializationData, which is incomplete in
// their class bodies; their members are therefore defined here.

CompositeSerializationData::CompositeSerializationData() = default;
CompositeSerializationData::CompositeSerializationData(CompositeSerializationData const& other) = default;
CompositeSerializationData::CompositeSerializationData(CompositeSerializationData&& other) noexcept = default;
CompositeSerializationData&
CompositeSerializationData::operator=(CompositeSerializationData const& other) = default;
CompositeSerializationData&
CompositeSerializationData::operator=(CompositeSerializationData&& other) noexcept = default;
CompositeSerializationData::~CompositeSerializationData() = default;

SerializationData& CompositeSerializationData::add(std::string name, SerializationData data) {
    m_members.emplace_back(std::move(name), std::move(data));
    return m_members.back().second;
}

SerializationData const* CompositeSerializationData::find(std::string const& name) const {
    for (Member const& member : m_members) {
        if (member.first == name) {
            return &member.second;
        }
    }
    return nullptr;
}

SerializationData* CompositeSerializationData::find(std::string const& name) {
    return const_cast<SerializationData*>(static_cast<CompositeSerializationData const&>(*this).find(name));
}

std::size_t CompositeSerializationData::size() const noexcept {
    return m_members.size();
}
bool CompositeSerializationData::empty() const noexcept {
    return m_members.empty();
}
CompositeSerializationData::const_iterator CompositeSerializationData::begin() const noexcept {
    return m_members.begin();
}
CompositeSerializationData::const_iterator CompositeSerializationData::end() const noexcept {
    return m_members.end();
}
CompositeSerializationData::iterator CompositeSerializationData::begin() noexcept {
    return m_members.begin();
}
CompositeSerializationData::iterator CompositeSerializationData::end() noexcept {
    return m_members.end();
}

bool CompositeSerializationData::operator==(CompositeSerializationData const& other) const {
    return m_members == other.m_members;
}

SequenceSerializationData::SequenceSerializationData() = default;
SequenceSerializationData::SequenceSerializationData(SequenceSerializationData const& other) = default;
SequenceSerializationData::SequenceSerializationData(SequenceSerializationData&& other) noexcept = default;
SequenceSerializationData&
SequenceSerializationData::operator=(SequenceSerializationData const& other) = default;
SequenceSerializationData&
SequenceSerializationData::operator=(SequenceSerializationData&& other) noexcept = default;
SequenceSerializationData::~SequenceSerializationData() = default;

SerializationData& SequenceSerializationData::add(SerializationData data) {
    m_items.push_back(std::move(data));
    return m_items.back();
}

std::size_t SequenceSerializationData::size() const noexcept {
    return m_items.size();
}
bool SequenceSerializationData::empty() const noexcept {
    return m_items.empty();
}
SerializationData const& SequenceSerializationData::operator[](std::size_t index) const {
    return m_items[index];
}
SerializationData& SequenceSerializationData::operator[](std::size_t index) {
    return m_items[index];
}
SequenceSerializationData::const_iterator SequenceSerializationData::begin() const noexcept {
    return m_items.begin();
}
SequenceSerializationData::const_iterator SequenceSerializationData::end() const noexcept {
    return m_items.end();
}
SequenceSerializationData::iterator SequenceSerializationData::begin() noexcept {
    return m_items.begin();
}
SequenceSerializationData::iterator SequenceSerializationData::end() noexcept {
    return m_items.end();
}

bool SequenceSerializationData::operator==(SequenceSerializationData const& other) const {
    return m_items == other.m_items;
}

} // namespace Kesto
