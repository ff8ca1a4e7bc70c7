#pragma once

#include <zentara/io/av_device_interface.h>

namespace Zentara::IO {

class enableColorRequest;
class enableDepthRequest;
class getCameraControlRangesRequest;
class getColorConfigurationsRequest;
class pauseStreamingRequest;
class readControlTransferRequest;
class resumeStreamingRequest;
class setCameraControlRequest;
class setDeviceRegionOfInterestRequest;
class setOutputFormatRequest;
class writeBulkTransferRequest;
class writeControlTransferRequest;
class xuLenRequest;
class xuRecvRequest;
class xuSendRequest;
class xuSetupRequest;

/// What a video back-end, for depth or colour, implements. What its frames look like, the description says to which the
/// node belongs.
class ZENTARA_API VideoDeviceInterface : public AVDeviceInterface {
public:
    explicit VideoDeviceInterface(GUID guid);
    ~VideoDeviceInterface() override;

    /// `Core::ImplType_VIDEO_DEVICE`. Safe.
    [[nodiscard]] static Core::ImplType getImplType();

    /// Says in the request's ranges what the settings accept.
    virtual void getCameraControlRanges(getCameraControlRangesRequest* request) = 0;

    /// Appends the modes to the request's list.
    virtual void getConfigurations(getColorConfigurationsRequest* request) = 0;

    /// These two start the stream in the request's mode.
    // Two names, for some compilers lay out the slots of overloads in an order of their own.
    virtual void enableColorStreaming(enableColorRequest* request) = 0;
    virtual void enableDepthStreaming(enableDepthRequest* request) = 0;

    /// Changes the request's one setting, also of a running stream.
    virtual void setCameraControl(setCameraControlRequest* request) = 0;

    /// Transfers to and from a control of an extension unit, the number of bytes that the control has, and the choice
    /// of the unit that is meant from now on.
    virtual void send(xuSendRequest* request) = 0;
    virtual void recv(xuRecvRequest* request) = 0;
    virtual void len(xuLenRequest* request) = 0;
    virtual void xuSetup(xuSetupRequest* request) = 0;

    /// Control and bulk transfers. These three throw `Zentara::Plugin::NotSupportedPluginException` ("not supported")
    /// unless overridden.
    virtual void read(readControlTransferRequest* request);
    virtual void write(writeBulkTransferRequest* request);
    virtual void write(writeControlTransferRequest* request);

    /// Halt the stream without ending it, and go on with it. These two do nothing unless overridden.
    virtual void pauseStreaming(pauseStreamingRequest* request);
    virtual void resumeStreaming(resumeStreamingRequest* request);

    /// \throws Zentara::Plugin::NotSupportedPluginException "setting region of interest is not supported" unless
    /// overridden
    virtual void setRegionOfInterest(setDeviceRegionOfInterestRequest* request);

    /// \throws Zentara::Plugin::NotSupportedPluginException "setting output format is not supported" unless overridden
    virtual void setOutputFormat(setOutputFormatRequest* request);
};

} // namespace Zentara::IO
