#include <KestoDM/platform/TypeManager.h>

namespace Kesto {
namespace Internal {

void TypeManager::construct(UntypedTypeRep const& rep, void* dst) {
    rep.defaultConstruct(dst);
}

void TypeManager::copy(UntypedTypeRep const& rep, void* dst, void const* src) {
    rep.copyAssign(dst, src);
}

void TypeManager::copyConstruct(UntypedTypeRep const& rep, void* dst, void const* src) {
    rep.copyConstruct(dst, src);
}

void TypeManager::move(UntypedTypeRep const& rep, void* dst, void* src) {
    rep.moveAssign(dst, src);
}

void TypeManager::moveConstruct(UntypedTypeRep const& rep, void* dst, void* src) {
    rep.moveConstruct(dst, src);
}

void TypeManager::destroy(UntypedTypeRep const& rep, void* object) noexcept {
    rep.destroy(object);
}

} // namespace Internal
} // namespace Kesto
