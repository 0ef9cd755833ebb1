// Deliveries, results that reach a plugin later than the call that asked for
// them, and their queues. Floor 3; defined in AVSKLoaderDeliveries.cpp.
#ifndef AVSK_DELIVERY_H
#define AVSK_DELIVERY_H

#include "AVSK/AVSKTypes.h"

struct PluginRecord;

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

// One result. A subclass carries it, and frees itself in DeliverToPlugin.
class AVSKDelivery {
  public:
    AVSKPluginID pluginID = NO_PLUGIN_ID; // -1 also after its plugin was unloaded
    AVSKDelivery *next = nullptr;
    AVSKDelivery *prev = nullptr;
    bool arrived = false; // further reports of the same completion are ignored

    // Hands the result to its plugin or, when cancelled, releases it without
    // calling a plugin. The library does not touch the delivery afterwards.
    virtual void DeliverToPlugin(bool cancelled) = 0;

  protected:
    AVSKDelivery() = default;
    AVSKDelivery(const AVSKDelivery &) = default;
    AVSKDelivery &operator=(const AVSKDelivery &) = default;
    // Never deleted through the base: subclasses own their objects.
    ~AVSKDelivery() = default;
};

// The start of a queue; its next is the delivery queued last. A head does not
// move while something is queued, because the first delivery points back at it.
class AVSKDeliveryHead final : public AVSKDelivery {
  public:
    void DeliverToPlugin(bool /*cancelled*/) override {} // unreachable: a head is in no queue
};

extern AVSKDeliveryHead orphaned; // pending deliveries of unloaded plugins

// Queues a delivery first.
void AVSKDeliveryEnqueue(AVSKDeliveryHead &head, AVSKDelivery *d);
// Takes a delivery out of its queue, if it is in one.
void AVSKDeliveryDequeue(AVSKDelivery *d);
// Takes out the delivery queued last, or returns null.
AVSKDelivery *AVSKDeliveryPop(AVSKDeliveryHead &head);

// Queues a delivery with its plugin until the host completes it.
void AVSKQueueDelivery(AVSKDelivery *d);
// The host has completed the request: delivers the result, defers it while the
// plugin is disabled, or cancels it if the plugin was unloaded.
void AVSKSendDelivery(AVSKDelivery *d);

// Delivers what was deferred, as long as the plugin stays enabled.
void DeliverDeferred(PluginRecord &record);
// Cancels the deferred deliveries of a plugin that is unloaded, and orphans the
// pending ones: they are cancelled when the host completes them.
void AbandonDeliveries(PluginRecord &record);

#pragma GCC visibility pop

#endif
