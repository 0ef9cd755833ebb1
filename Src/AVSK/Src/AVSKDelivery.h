// Results that reach a plugin later than the call that asked for them, and
// the queues in which they wait.
#ifndef AVSK_DELIVERY_H
#define AVSK_DELIVERY_H

#include "AVSK/AVSKTypes.h"

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

// One result. A subclass carries it, and frees itself in DeliverToPlugin.
class AVSKDelivery {
  public:
    AVSKPluginID pluginID = NO_PLUGIN_ID; // -1 also after its plugin was unloaded
    AVSKDelivery *next = nullptr;
    AVSKDelivery *prev = nullptr;
    bool arrived = false; // sent once; further reports of the same completion are ignored

    // Hands the result to its plugin, or, when cancelled, releases it without
    // calling any plugin. The library does not touch the delivery afterwards.
    virtual void DeliverToPlugin(bool cancelled) = 0;

  protected:
    AVSKDelivery() = default;
    AVSKDelivery(const AVSKDelivery &) = default;
    AVSKDelivery &operator=(const AVSKDelivery &) = default;
    // Never deleted through the base: subclasses own their objects.
    ~AVSKDelivery() = default;
};

// The start of a queue; its next is the delivery queued last. It must not
// move while something is queued: the first delivery points back at it.
class AVSKDeliveryHead final : public AVSKDelivery {
  public:
    void DeliverToPlugin(bool /*cancelled*/) override {} // unreachable: a head is in no queue
};

extern AVSKDeliveryHead orphaned; // pending deliveries of plugins that are gone

// Queues a delivery first.
void AVSKDeliveryEnqueue(AVSKDeliveryHead &head, AVSKDelivery *d);
// Takes a delivery out of its queue, if it is in one.
void AVSKDeliveryDequeue(AVSKDelivery *d);
// Takes out the delivery queued last, or returns null.
AVSKDelivery *AVSKDeliveryPop(AVSKDeliveryHead &head);

// Queues a delivery with its plugin until the host completes it.
void AVSKQueueDelivery(AVSKDelivery *d);
// Says that the host has completed it: delivers it, holds it back while its
// plugin is disabled, or cancels it if its plugin is gone.
void AVSKSendDelivery(AVSKDelivery *d);

#pragma GCC visibility pop

#endif
