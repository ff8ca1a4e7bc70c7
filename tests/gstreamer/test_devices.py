"""Cameras are devices, which come and go."""
import subprocess

from conftest import Plug
from pipelines import PATIENCE, Gst


def test_the_list_names_cameras_and_their_caps(plug: Plug) -> None:
    plug(LAB="", HALL="")
    listed = subprocess.run(["gst-device-monitor-1.0", "Source/Video"], stdout=subprocess.PIPE, text=True, check=True).stdout
    for serial in ("LAB", "HALL"):
        assert f"device.serial = {serial}" in listed and f"gst-launch-1.0 zentarasrc camera={serial} ! ..." in listed
    assert "format=GRAY16_LE" in listed and "format=YUY2" in listed


def test_devices_come_and_go_and_make_sources(plug: Plug) -> None:
    plug(LAB="")
    monitor = Gst.DeviceMonitor()
    monitor.add_filter("Source/Video", None)
    assert monitor.start()

    def names(kind: Gst.MessageType) -> str:
        while message := monitor.get_bus().timed_pop(PATIENCE):
            if message.type == kind:
                device = message.parse_device_removed() if kind == Gst.MessageType.DEVICE_REMOVED else message.parse_device_added()
                if device.get_properties().get_string("device.api") == "zentara":
                    return device.get_properties().get_string("device.serial")
        return ""

    try:
        assert names(Gst.MessageType.DEVICE_ADDED) == "LAB"
        plug(HALL="")
        assert names(Gst.MessageType.DEVICE_REMOVED) == "LAB"
        assert names(Gst.MessageType.DEVICE_ADDED) == "HALL"
        mine = [one for one in monitor.get_devices() if one.get_properties().get_string("device.api") == "zentara"]
        assert [one.create_element(None).props.camera for one in mine] == ["HALL"]
    finally:
        monitor.stop()
