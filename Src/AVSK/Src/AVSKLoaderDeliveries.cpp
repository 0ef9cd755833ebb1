// The queues of deliveries. Owns orphaned; called by modules whose requests the
// host completes later, and by the loader when a plugin is enabled or unloaded.
#include "AVSKDelivery.h"

#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKLoaderRegistry.h"

#include <utility>

AVSKDeliveryHead orphaned;

void AVSKDeliveryEnqueue(AVSKDeliveryHead &head, AVSKDelivery *d) {
    d->next = head.next;
    d->prev = &head;
    if (head.next)
        head.next->prev = d;
    head.next = d;
}

void AVSKDeliveryDequeue(AVSKDelivery *d) {
    if (d->prev)
        d->prev->next = d->next;
    if (d->next)
        d->next->prev = d->prev;
    d->next = nullptr;
    d->prev = nullptr;
}

AVSKDelivery *AVSKDeliveryPop(AVSKDeliveryHead &head) {
    AVSKDelivery *first = head.next;
    if (first)
        AVSKDeliveryDequeue(first);
    return first;
}

void AVSKQueueDelivery(AVSKDelivery *d) {
    PluginRecord *record = PluginAt(d->pluginID);
    if (!record) {
        AVSKSendError("Internal error: async queue pending but the plugin ID is invalid.");
        return;
    }
    d->arrived = false;
    AVSKDeliveryEnqueue(record->pendingDeliveries, d);
}

void AVSKSendDelivery(AVSKDelivery *d) {
    if (std::exchange(d->arrived, true)) // unreachable: a defence, no caller sends one twice
        return;                          // unreachable: likewise
    AVSKDeliveryDequeue(d);
    PluginRecord *record = PluginAt(d->pluginID);
    if (!record) {
        d->DeliverToPlugin(true);
        return;
    }
    if (const StDispatchCallback guard(d->pluginID); guard())
        d->DeliverToPlugin(false);
    else
        AVSKDeliveryEnqueue(record->deferredDeliveries, d);
}

void DeliverDeferred(PluginRecord &record) {
    const StDispatchCallback guard(record.id);
    // A delivery may cause the plugin to be disabled.
    while (record.enabled) {
        AVSKDelivery *delivery = AVSKDeliveryPop(record.deferredDeliveries);
        if (!delivery)
            break;
        delivery->DeliverToPlugin(false);
    }
}

void AbandonDeliveries(PluginRecord &record) {
    while (AVSKDelivery *pending = AVSKDeliveryPop(record.pendingDeliveries)) {
        if (record.id != AVSK_PLUGIN_AERIVO) // the host keeps ID 0 after a restart
            pending->pluginID = NO_PLUGIN_ID;
        AVSKDeliveryEnqueue(orphaned, pending);
    }
    while (AVSKDelivery *deferred = AVSKDeliveryPop(record.deferredDeliveries)) {
        deferred->pluginID = NO_PLUGIN_ID;
        deferred->DeliverToPlugin(true);
    }
}
