// A placeholder: shows what arrives.
const state = document.getElementById('state');
const socket = new WebSocket(`ws://${location.host}/live`, ['avsk', location.hash.slice(1)]);
socket.binaryType = 'arraybuffer';
socket.onopen = () => socket.send(JSON.stringify({do: 'topics', open: ['simulator', 'screen', 'log']}));
socket.onmessage = (event) => {
    if (event.data instanceof ArrayBuffer)
        socket.send(JSON.stringify({do: 'shown', version: new DataView(event.data).getUint32(0, true)}));
    else
        state.textContent = event.data;
};
socket.onclose = () => { state.textContent = 'not connected'; };
