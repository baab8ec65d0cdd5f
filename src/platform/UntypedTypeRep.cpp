#include <KestoDM/platform/UntypedTypeRep.h>

#include <cstring>
#include <limits>

namespace Kesto {
namespace Internal {

namespace {

/// Plain bytes of a fixed size: zeros by default, copied as they are.
class BytesRepImpl final : public UntypedTypeRep::Impl {
public:
    BytesRepImpl(std::size_t size, std::size_t alignment) noexcept : Impl(size, alignment, false) {}

    void defaultConstruct(void* dst) const override { std::memset(dst, 0, size()); }
    void copyConstruct(void* dst, void const* src) const override { std::memmove(dst, src, size()); }
    void moveConstruct(void* dst, void* src) const override { std::memmove(dst, src, size()); }
    void copyAssign(void* dst, void const* src) const override { std::memmove(dst, src, size()); }
    void moveAssign(void* dst, void* src) const override { std::memmove(dst, src, size()); }
    void destroy(void*) const noexcept override {}
};

using Members = std::vector<std::pair<std::size_t, UntypedTypeRep>>;

bool anyNeedsDestruction(Members const& members) {
    for (auto const& member : members) {
        if (member.second.needsDestruction()) {
            return true;
        }
    }
    return false;
}

/// A struct laid out by its maker: each operation goes member by member.
class StructRepImpl final : public UntypedTypeRep::Impl {
public:
    StructRepImpl(Members members, std::size_t size, std::size_t alignment)
        : Impl(size, alignment, anyNeedsDestruction(members)), m_members(std::move(members)) {}

    void defaultConstruct(void* dst) const override {
        // Zeroing first makes the padding deterministic and gives members
        // whose rep constructs nothing (opaque bytes) their zero state.
        std::memset(dst, 0, size());
        constructEach(dst,
                      [](UntypedTypeRep const& rep, void* to, std::size_t) { rep.defaultConstruct(to); });
    }
    void copyConstruct(void* dst, void const* src) const override {
        std::memset(dst, 0, size());
        constructEach(dst, [src](UntypedTypeRep const& rep, void* to, std::size_t offset) {
            rep.copyConstruct(to, static_cast<char const*>(src) + offset);
        });
    }
    void moveConstruct(void* dst, void* src) const override {
        std::memset(dst, 0, size());
        constructEach(dst, [src](UntypedTypeRep const& rep, void* to, std::size_t offset) {
            rep.moveConstruct(to, static_cast<char*>(src) + offset);
        });
    }
    void copyAssign(void* dst, void const* src) const override {
        for (auto const& [offset, rep] : m_members) {
            rep.copyAssign(at(dst, offset), static_cast<char const*>(src) + offset);
        }
    }
    void moveAssign(void* dst, void* src) const override {
        for (auto const& [offset, rep] : m_members) {
            rep.moveAssign(at(dst, offset), at(src, offset));
        }
    }
    void destroy(void* object) const noexcept override { destroyFirst(object, m_members.size()); }

private:
    static void* at(void* base, std::size_t offset) noexcept { return static_cast<char*>(base) + offset; }

    /// Constructs member after member; when one throws, the members already
    /// made are destroyed again, so a failed construction leaves no object.
    template <class Construct>
    void constructEach(void* dst, Construct construct) const {
        std::size_t made = 0;
        try {
            for (; made < m_members.size(); ++made) {
                construct(m_members[made].second, at(dst, m_members[made].first), m_members[made].first);
            }
        } catch (...) {
            destroyFirst(dst, made);
            throw;
        }
    }

    void destroyFirst(void* object, std::size_t count) const noexcept {
        while (count > 0) {
            --count;
            m_members[count].second.destroy(at(object, m_members[count].first));
        }
    }

    Members m_members;
};

bool isPowerOfTwo(std::size_t value) noexcept {
    return value != 0 && (value & (value - 1)) == 0;
}

} // namespace

UntypedTypeRep::Impl::~Impl() = default;

UntypedTypeRep UntypedTypeRep::opaque16() {
    static std::shared_ptr<Impl const> const* const impl =
        new std::shared_ptr<Impl const>(std::make_shared<BytesRepImpl>(16, 8));
    return UntypedTypeRep(*impl);
}

UntypedTypeRep UntypedTypeRep::makeStruct(std::vector<std::pair<std::size_t, UntypedTypeRep>> members,
                                          std::size_t size, std::size_t alignment) {
    if (!isPowerOfTwo(alignment) || size % alignment != 0) {
        return UntypedTypeRep();
    }
    for (auto const& [offset, rep] : members) {
        bool const fits = rep.isValid() && rep.size() <= size && offset <= size - rep.size();
        bool const aligned = rep.alignment() <= alignment && offset % rep.alignment() == 0;
        if (!fits || !aligned) {
            return UntypedTypeRep();
        }
    }
    return UntypedTypeRep(std::make_shared<StructRepImpl>(std::move(members), size, alignment));
}

void* UntypedTypeRep::allocate(std::size_t count) const {
    if (count == 0 || m_impl == nullptr) {
        return nullptr;
    }
    std::size_t const elementSize = m_impl->size();
    if (elementSize != 0 && count > std::numeric_limits<std::size_t>::max() / elementSize) {
        throw std::bad_array_new_length();
    }
    // At least one byte, so that storage for objects of size 0 is still distinct and non-null.
    std::size_t const bytes = elementSize * count > 0 ? elementSize * count : 1;
    void* const storage = ::operator new(bytes, std::align_val_t(m_impl->alignment()));
    std::memset(storage, 0, bytes);
    return storage;
}

void UntypedTypeRep::deallocate(void* storage) const noexcept {
    if (storage != nullptr) {
        ::operator delete(storage, std::align_val_t(alignment()));
    }
}

} // namespace Internal
} // namespace Kesto
