# shellcheck shell=bash
# Sourced by package_test.sh: a USB serial adapter that isn't there, for the rules that name its port.
#
#   make_adapter ROOT SERIAL PORT   tells of one in ROOT/sys as the kernel would: with that serial number, or none if empty,
#                                   and that port of its interface
#   ADAPTER                         its path below /sys

ADAPTER=/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/ttyUSB0/tty/ttyUSB0

make_adapter() {
    local sys=$1/sys serial=$2 port=$3 host usb device interface node
    rm -rf "${sys:?}"/*
    node=$sys$ADAPTER
    interface=${node%/ttyUSB0/tty/ttyUSB0}
    device=${interface%/*}
    usb=${device%/*}
    host=${usb%/*}
    mkdir -p "$node" "$sys"/bus/{pci,usb,usb-serial} "$sys/class/tty"
    ln -sr "$sys/bus/pci" "$host/subsystem"
    ln -sr "$sys/bus/usb" "$usb/subsystem"
    ln -sr "$sys/bus/usb" "$device/subsystem"
    ln -sr "$sys/bus/usb" "$interface/subsystem"
    ln -sr "$sys/bus/usb-serial" "$interface/ttyUSB0/subsystem"
    ln -sr "$sys/class/tty" "$node/subsystem"
    printf 'PCI_SLOT_NAME=0000:00:14.0\n' >"$host/uevent"
    printf 'DEVTYPE=usb_device\n' | tee "$usb/uevent" >"$device/uevent"
    printf 'DEVTYPE=usb_interface\n' >"$interface/uevent"
    printf 'MAJOR=188\nMINOR=0\nDEVNAME=ttyUSB0\n' >"$node/uevent"
    printf '188:0\n' >"$node/dev"
    printf '%s\n' "$port" >"$interface/ttyUSB0/port_number"
    : >"$interface/ttyUSB0/uevent"
    printf '0403\n' >"$device/idVendor"
    printf '6001\n' >"$device/idProduct"
    printf '0600\n' >"$device/bcdDevice"
    [ -z "$serial" ] || printf '%s\n' "$serial" >"$device/serial"
    printf '00\n' >"$interface/bInterfaceNumber"
    printf 'ff\n' | tee "$interface/bInterfaceClass" "$interface/bInterfaceSubClass" >"$interface/bInterfaceProtocol"
}
