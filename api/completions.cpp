#include "api/completions.h"

#include <new>
#include <utility>

namespace {

std::unique_ptr<bsem> new_semaphore () {
  auto semaphore = std::make_unique<bsem> (false);
  if (!semaphore->is_valid ())
    throw std::bad_alloc ();
  return semaphore;
}

} // namespace

OrvaConnObject::CBBaseObject::CBBaseObject (ARef<OrvaConnObject> connection, Waiter waiter)
    : connection_ (std::move (connection)), semaphore_ (waiter == Waiter::one ? new_semaphore () : nullptr),
      text_ (result_text (ORVA_OK)) {
  ++connection_->pending_commands_;
}

void OrvaConnObject::CBBaseObject::cb_error (AString text, uint32_t) {
  code_ = ORVA_ERROR;
  text_ = std::move (text);
  finish ();
}

ResultCode OrvaConnObject::CBBaseObject::wait_result () {
  if (semaphore_ == nullptr)
    return result_ok ();
  semaphore_->wait ();
  return make_result (code_, text_);
}

void OrvaConnObject::CBBaseObject::finish () {
  // The waiter may have returned before the second step; its pointer and the command's reference are
  // separate.
  if (semaphore_ != nullptr)
    semaphore_->post ();
  --connection_->pending_commands_;
  decrease_reference ();
}

void OrvaConnObject::CBBaseObject::decrease_reference () {
  if (--references_ == 0)
    delete this;
}

void OrvaConnObject::CBOkObject::cb_ok () {
  link = connection ().links_.load ();
  finish ();
}

void OrvaConnObject::CBClipExistsObject::cb_exists (AString, bool given) {
  exists = given;
  finish ();
}

void OrvaConnObject::CBClipInfoObject::cb_info (QUILL3::ClipInfo given) {
  record = std::move (given);
  finish ();
}

void OrvaConnObject::CBServerNameObject::cb_name (AString given) {
  name = std::move (given);
  finish ();
}

void OrvaConnObject::CBVideoStandardObject::cb_standard (uint32_t given_standard, uint32_t given_rate,
                                                         uint32_t given_resolution) {
  standard = given_standard;
  rate = given_rate;
  resolution = given_resolution;
  finish ();
}

void OrvaConnObject::CBDiskSpaceObject::cb_disk (uint64_t given_total, uint64_t given_available,
                                                 uint32_t given_field_size) {
  total = given_total;
  available = given_available;
  field_size = given_field_size;
  finish ();
}

OrvaConnObject::CBRef<OrvaConnObject::CBOkObject>
OrvaConnObject::make_completion (const ARef<OrvaConnObject> &self) {
  const bool waits = self->asynchronous_ == 0;
  return CBRef<CBOkObject> (
      new CBOkObject (self, waits ? CBBaseObject::Waiter::one : CBBaseObject::Waiter::none));
}

OrvaConnObject::CBRef<OrvaConnObject::CBOkObject>
OrvaConnObject::make_forced_completion (const ARef<OrvaConnObject> &self) {
  return make_query<CBOkObject> (self);
}
