#!/usr/bin/python3
"""usage: battery.py CENTRAL PERIPHERAL LEVEL   A Low Energy device with the battery service on the adapter PERIPHERAL,
which the adapter CENTRAL of the same computer finds and connects to. Says "connected" when it has. Each line of standard
input is a new level."""

import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

BLUEZ = "org.bluez"
SERVICE = "org.bluez.GattService1"
CHARACTERISTIC = "org.bluez.GattCharacteristic1"
ADVERTISEMENT = "org.bluez.LEAdvertisement1"
PROPERTIES = "org.freedesktop.DBus.Properties"
BATTERY_SERVICE, BATTERY_LEVEL = ("0000%s-0000-1000-8000-00805f9b34fb" % number for number in ("180f", "2a19"))
ROOT = "/battery"


class Exported(dbus.service.Object):
    """An object that BlueZ reads by the properties of its interface."""

    def __init__(self, bus, path, interface, **properties):
        super().__init__(bus, path)
        self.interface, self.properties = interface, properties

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return self.properties


class Level(Exported):
    @dbus.service.method(CHARACTERISTIC, in_signature="a{sv}", out_signature="ay")
    def ReadValue(self, options):
        return dbus.ByteArray([self.level])

    @dbus.service.method(CHARACTERISTIC)
    def StartNotify(self):
        pass

    @dbus.service.method(CHARACTERISTIC)
    def StopNotify(self):
        pass

    @dbus.service.signal(PROPERTIES, signature="sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass

    def become(self, level):
        self.level = level
        self.PropertiesChanged(CHARACTERISTIC, {"Value": dbus.ByteArray([level])}, [])


class Application(dbus.service.Object):
    def __init__(self, bus, objects):
        super().__init__(bus, ROOT)
        self.objects = objects

    @dbus.service.method("org.freedesktop.DBus.ObjectManager", out_signature="a{oa{sa{sv}}}")
    def GetManagedObjects(self):
        return {each.__dbus_object_path__: {each.interface: each.properties} for each in self.objects}


class Peripheral:
    """The device. What BlueZ is asked for is answered while the loop runs."""

    def __init__(self, bus, adapter, level):
        service = Exported(bus, ROOT + "/service", SERVICE, UUID=BATTERY_SERVICE, Primary=True)
        self.battery = Level(bus, ROOT + "/service/level", CHARACTERISTIC, UUID=BATTERY_LEVEL,
                             Service=dbus.ObjectPath(ROOT + "/service"), Flags=dbus.Array(["read", "notify"]))
        self.battery.become(level)
        self.application = Application(bus, [service, self.battery])
        # An emulated adapter is heard when it begins to advertise, and then no more: two are begun in turn, for ever.
        self.advertisements = [Exported(bus, f"{ROOT}/advertisement{number}", ADVERTISEMENT, Type="peripheral",
                                        LocalName="Trackpad", ServiceUUIDs=dbus.Array([BATTERY_SERVICE]),
                                        Discoverable=True, Duration=dbus.UInt16(1)) for number in (1, 2)]
        self.steps = [(adapter, "org.bluez.GattManager1.RegisterApplication", ROOT)]
        self.steps += [(adapter, "org.bluez.LEAdvertisingManager1.RegisterAdvertisement", each.__dbus_object_path__)
                       for each in self.advertisements]


class Central:
    """The computer that finds the device and connects to it."""

    def __init__(self, bus, adapter):
        self.bus, self.adapter = bus, adapter

    def start(self):
        dbus.Interface(self.bus.get_object(BLUEZ, self.adapter), "org.bluez.Adapter1").StartDiscovery()
        GLib.timeout_add(500, self.look)

    def look(self):
        objects = dbus.Interface(self.bus.get_object(BLUEZ, "/"), "org.freedesktop.DBus.ObjectManager")
        found = [path for path in objects.GetManagedObjects() if path.startswith(self.adapter + "/dev_")]
        if found:
            dbus.Interface(self.bus.get_object(BLUEZ, found[0]), "org.bluez.Device1").Connect(
                reply_handler=lambda: print("connected", flush=True), error_handler=fail)
        return not found


def fail(error):
    sys.exit(str(error))


def main(central_adapter, peripheral_adapter, level):
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus, loop = dbus.SystemBus(), GLib.MainLoop()
    peripheral = Peripheral(bus, "/org/bluez/" + peripheral_adapter, level)
    central = Central(bus, "/org/bluez/" + central_adapter)

    def advance():
        if not peripheral.steps:
            return central.start()
        adapter, method, path = peripheral.steps.pop(0)
        call = bus.get_object(BLUEZ, adapter).get_dbus_method(*reversed(method.rsplit(".", 1)))
        return call(dbus.ObjectPath(path), dbus.Dictionary(signature="sv"), reply_handler=advance, error_handler=fail)

    def read(channel, condition):
        line = sys.stdin.readline()
        peripheral.battery.become(int(line)) if line else loop.quit()
        return True

    GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, read)
    advance()
    loop.run()


main(sys.argv[1], sys.argv[2], int(sys.argv[3]))
