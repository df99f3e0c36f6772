#pragma once
// The parts of Direct3D 9 that the renderer never calls: each of them is a broken rule when it is called.
//
// Bases of the double's objects, which override what the renderer uses. Thread: any.
#include <windows.h>

#include <d3d9.h>

#include "tests/support/doubles/Violations.h"

namespace doubles {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
// clang-format off
#define UNUSED_AS(type, signature, nothing)                                     \
    STDMETHODIMP_(type) signature override {                                    \
        Violations::Add("a part of Direct3D that is not for it: " #signature);  \
        return nothing;                                                         \
    }
#define UNUSED(signature) UNUSED_AS(HRESULT, signature, E_NOTIMPL)

class UnusedDirect3D : public IDirect3D9 {
  public:
    UNUSED(RegisterSoftwareDevice(void*))
    UNUSED_AS(UINT, GetAdapterCount(), {})
    UNUSED(GetAdapterIdentifier(UINT, DWORD, D3DADAPTER_IDENTIFIER9*))
    UNUSED_AS(UINT, GetAdapterModeCount(UINT, D3DFORMAT), {})
    UNUSED(EnumAdapterModes(UINT, D3DFORMAT, UINT, D3DDISPLAYMODE*))
    UNUSED(CheckDeviceFormat(UINT, D3DDEVTYPE, D3DFORMAT, DWORD, D3DRESOURCETYPE, D3DFORMAT))
    UNUSED(CheckDeviceMultiSampleType(UINT, D3DDEVTYPE, D3DFORMAT, BOOL, D3DMULTISAMPLE_TYPE, DWORD*))
    UNUSED(CheckDepthStencilMatch(UINT, D3DDEVTYPE, D3DFORMAT, D3DFORMAT, D3DFORMAT))
    UNUSED(CheckDeviceFormatConversion(UINT, D3DDEVTYPE, D3DFORMAT, D3DFORMAT))
    UNUSED(GetDeviceCaps(UINT, D3DDEVTYPE, D3DCAPS9*))
    UNUSED_AS(HMONITOR, GetAdapterMonitor(UINT), {})
};

class UnusedDevice : public IDirect3DDevice9 {
  public:
    UNUSED_AS(UINT, GetAvailableTextureMem(), {})
    UNUSED(EvictManagedResources())
    UNUSED(GetDirect3D(IDirect3D9**))
    UNUSED(GetDeviceCaps(D3DCAPS9*))
    UNUSED(GetDisplayMode(UINT, D3DDISPLAYMODE*))
    UNUSED(GetCreationParameters(D3DDEVICE_CREATION_PARAMETERS*))
    UNUSED(SetCursorProperties(UINT, UINT, IDirect3DSurface9*))
    UNUSED_AS(void, SetCursorPosition(int, int, DWORD), void())
    UNUSED_AS(BOOL, ShowCursor(BOOL), {})
    UNUSED(GetSwapChain(UINT, IDirect3DSwapChain9**))
    UNUSED_AS(UINT, GetNumberOfSwapChains(), {})
    UNUSED(GetRasterStatus(UINT, D3DRASTER_STATUS*))
    UNUSED(SetDialogBoxMode(BOOL))
    UNUSED_AS(void, SetGammaRamp(UINT, DWORD, const D3DGAMMARAMP*), void())
    UNUSED_AS(void, GetGammaRamp(UINT, D3DGAMMARAMP*), void())
    UNUSED(CreateTexture(UINT, UINT, UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DTexture9**, HANDLE*))
    UNUSED(CreateVolumeTexture(UINT, UINT, UINT, UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DVolumeTexture9**, HANDLE*))
    UNUSED(CreateCubeTexture(UINT, UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DCubeTexture9**, HANDLE*))
    UNUSED(CreateVertexBuffer(UINT, DWORD, DWORD, D3DPOOL, IDirect3DVertexBuffer9**, HANDLE*))
    UNUSED(CreateIndexBuffer(UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DIndexBuffer9**, HANDLE*))
    UNUSED(CreateRenderTarget(UINT, UINT, D3DFORMAT, D3DMULTISAMPLE_TYPE, DWORD, BOOL, IDirect3DSurface9**, HANDLE*))
    UNUSED(CreateDepthStencilSurface(UINT, UINT, D3DFORMAT, D3DMULTISAMPLE_TYPE, DWORD, BOOL, IDirect3DSurface9**, HANDLE*))
    UNUSED(UpdateSurface(IDirect3DSurface9*, const RECT*, IDirect3DSurface9*, const POINT*))
    UNUSED(UpdateTexture(IDirect3DBaseTexture9*, IDirect3DBaseTexture9*))
    UNUSED(GetRenderTargetData(IDirect3DSurface9*, IDirect3DSurface9*))
    UNUSED(GetFrontBufferData(UINT, IDirect3DSurface9*))
    UNUSED(CreateOffscreenPlainSurface(UINT, UINT, D3DFORMAT, D3DPOOL, IDirect3DSurface9**, HANDLE*))
    UNUSED(SetRenderTarget(DWORD, IDirect3DSurface9*))
    UNUSED(GetRenderTarget(DWORD, IDirect3DSurface9**))
    UNUSED(SetDepthStencilSurface(IDirect3DSurface9*))
    UNUSED(GetDepthStencilSurface(IDirect3DSurface9**))
    UNUSED(BeginScene())
    UNUSED(EndScene())
    UNUSED(Clear(DWORD, const D3DRECT*, DWORD, D3DCOLOR, float, DWORD))
    UNUSED(SetTransform(D3DTRANSFORMSTATETYPE, const D3DMATRIX*))
    UNUSED(GetTransform(D3DTRANSFORMSTATETYPE, D3DMATRIX*))
    UNUSED(MultiplyTransform(D3DTRANSFORMSTATETYPE, const D3DMATRIX*))
    UNUSED(SetViewport(const D3DVIEWPORT9*))
    UNUSED(GetViewport(D3DVIEWPORT9*))
    UNUSED(SetMaterial(const D3DMATERIAL9*))
    UNUSED(GetMaterial(D3DMATERIAL9*))
    UNUSED(SetLight(DWORD, const D3DLIGHT9*))
    UNUSED(GetLight(DWORD, D3DLIGHT9*))
    UNUSED(LightEnable(DWORD, BOOL))
    UNUSED(GetLightEnable(DWORD, BOOL*))
    UNUSED(SetClipPlane(DWORD, const float*))
    UNUSED(GetClipPlane(DWORD, float*))
    UNUSED(SetRenderState(D3DRENDERSTATETYPE, DWORD))
    UNUSED(GetRenderState(D3DRENDERSTATETYPE, DWORD*))
    UNUSED(CreateStateBlock(D3DSTATEBLOCKTYPE, IDirect3DStateBlock9**))
    UNUSED(BeginStateBlock())
    UNUSED(EndStateBlock(IDirect3DStateBlock9**))
    UNUSED(SetClipStatus(const D3DCLIPSTATUS9*))
    UNUSED(GetClipStatus(D3DCLIPSTATUS9*))
    UNUSED(GetTexture(DWORD, IDirect3DBaseTexture9**))
    UNUSED(SetTexture(DWORD, IDirect3DBaseTexture9*))
    UNUSED(GetTextureStageState(DWORD, D3DTEXTURESTAGESTATETYPE, DWORD*))
    UNUSED(SetTextureStageState(DWORD, D3DTEXTURESTAGESTATETYPE, DWORD))
    UNUSED(GetSamplerState(DWORD, D3DSAMPLERSTATETYPE, DWORD*))
    UNUSED(SetSamplerState(DWORD, D3DSAMPLERSTATETYPE, DWORD))
    UNUSED(ValidateDevice(DWORD*))
    UNUSED(SetPaletteEntries(UINT, const PALETTEENTRY*))
    UNUSED(GetPaletteEntries(UINT, PALETTEENTRY*))
    UNUSED(SetCurrentTexturePalette(UINT))
    UNUSED(GetCurrentTexturePalette(UINT*))
    UNUSED(SetScissorRect(const RECT*))
    UNUSED(GetScissorRect(RECT*))
    UNUSED(SetSoftwareVertexProcessing(BOOL))
    UNUSED_AS(BOOL, GetSoftwareVertexProcessing(), {})
    UNUSED(SetNPatchMode(float))
    UNUSED_AS(float, GetNPatchMode(), {})
    UNUSED(DrawPrimitive(D3DPRIMITIVETYPE, UINT, UINT))
    UNUSED(DrawIndexedPrimitive(D3DPRIMITIVETYPE, INT, UINT, UINT, UINT, UINT))
    UNUSED(DrawPrimitiveUP(D3DPRIMITIVETYPE, UINT, const void*, UINT))
    UNUSED(DrawIndexedPrimitiveUP(D3DPRIMITIVETYPE, UINT, UINT, UINT, const void*, D3DFORMAT, const void*, UINT))
    UNUSED(ProcessVertices(UINT, UINT, UINT, IDirect3DVertexBuffer9*, IDirect3DVertexDeclaration9*, DWORD))
    UNUSED(CreateVertexDeclaration(const D3DVERTEXELEMENT9*, IDirect3DVertexDeclaration9**))
    UNUSED(SetVertexDeclaration(IDirect3DVertexDeclaration9*))
    UNUSED(GetVertexDeclaration(IDirect3DVertexDeclaration9**))
    UNUSED(SetFVF(DWORD))
    UNUSED(GetFVF(DWORD*))
    UNUSED(CreateVertexShader(const DWORD*, IDirect3DVertexShader9**))
    UNUSED(SetVertexShader(IDirect3DVertexShader9*))
    UNUSED(GetVertexShader(IDirect3DVertexShader9**))
    UNUSED(SetVertexShaderConstantF(UINT, const float*, UINT))
    UNUSED(GetVertexShaderConstantF(UINT, float*, UINT))
    UNUSED(SetVertexShaderConstantI(UINT, const int*, UINT))
    UNUSED(GetVertexShaderConstantI(UINT, int*, UINT))
    UNUSED(SetVertexShaderConstantB(UINT, const BOOL*, UINT))
    UNUSED(GetVertexShaderConstantB(UINT, BOOL*, UINT))
    UNUSED(SetStreamSource(UINT, IDirect3DVertexBuffer9*, UINT, UINT))
    UNUSED(GetStreamSource(UINT, IDirect3DVertexBuffer9**, UINT*, UINT*))
    UNUSED(SetStreamSourceFreq(UINT, UINT))
    UNUSED(GetStreamSourceFreq(UINT, UINT*))
    UNUSED(SetIndices(IDirect3DIndexBuffer9*))
    UNUSED(GetIndices(IDirect3DIndexBuffer9**))
    UNUSED(CreatePixelShader(const DWORD*, IDirect3DPixelShader9**))
    UNUSED(SetPixelShader(IDirect3DPixelShader9*))
    UNUSED(GetPixelShader(IDirect3DPixelShader9**))
    UNUSED(SetPixelShaderConstantF(UINT, const float*, UINT))
    UNUSED(GetPixelShaderConstantF(UINT, float*, UINT))
    UNUSED(SetPixelShaderConstantI(UINT, const int*, UINT))
    UNUSED(GetPixelShaderConstantI(UINT, int*, UINT))
    UNUSED(SetPixelShaderConstantB(UINT, const BOOL*, UINT))
    UNUSED(GetPixelShaderConstantB(UINT, BOOL*, UINT))
    UNUSED(DrawRectPatch(UINT, const float*, const D3DRECTPATCH_INFO*))
    UNUSED(DrawTriPatch(UINT, const float*, const D3DTRIPATCH_INFO*))
    UNUSED(DeletePatch(UINT))
    UNUSED(CreateQuery(D3DQUERYTYPE, IDirect3DQuery9**))
};

class UnusedSwapChain : public IDirect3DSwapChain9 {
  public:
    UNUSED(Present(const RECT*, const RECT*, HWND, const RGNDATA*, DWORD))
    UNUSED(GetFrontBufferData(IDirect3DSurface9*))
    UNUSED(GetRasterStatus(D3DRASTER_STATUS*))
    UNUSED(GetDisplayMode(D3DDISPLAYMODE*))
    UNUSED(GetDevice(IDirect3DDevice9**))
    UNUSED(GetPresentParameters(D3DPRESENT_PARAMETERS*))
};

class UnusedSurface : public IDirect3DSurface9 {
  public:
    UNUSED(GetDevice(IDirect3DDevice9**))
    UNUSED(SetPrivateData(REFGUID, const void*, DWORD, DWORD))
    UNUSED(GetPrivateData(REFGUID, void*, DWORD*))
    UNUSED(FreePrivateData(REFGUID))
    UNUSED_AS(DWORD, SetPriority(DWORD), {})
    UNUSED_AS(DWORD, GetPriority(), {})
    UNUSED_AS(void, PreLoad(), void())
    UNUSED_AS(D3DRESOURCETYPE, GetType(), {})
    UNUSED(GetContainer(REFIID, void**))
    UNUSED(GetDesc(D3DSURFACE_DESC*))
    UNUSED(GetDC(HDC*))
    UNUSED(ReleaseDC(HDC))
};

#undef UNUSED
#undef UNUSED_AS
// clang-format on
#pragma GCC diagnostic pop

}  // namespace doubles
